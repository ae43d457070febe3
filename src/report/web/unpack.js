(async function () {
  if (!document.documentElement.className) return;
  try {
    var bytes = Uint8Array.from(atob(document.getElementById("script").textContent), function (c) { return c.charCodeAt(0); });
    var script = document.createElement("script");
    script.textContent = await new Response(new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"))).text();
    document.body.appendChild(script);
  } catch (error) {
    document.documentElement.className = "";
  }
})();
