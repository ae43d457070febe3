// The interactive plots of the page. Without this script the static pictures stand in their place.
// SPDX-License-Identifier: MIT
var all = JSON.parse(document.getElementById("data").textContent);
all.forEach(function (data) {
  var box = document.querySelector("#" + data.id + " .box");
  if (box) box.pair = new Pair(box, data);
});
