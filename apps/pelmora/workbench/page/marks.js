// What stands for a point: a shape or, for tens of thousands, a square of pixels, which takes a fraction of the time.
// SPDX-License-Identifier: MIT
export function shapePath(path, shape, x, y, r) {
  if (shape === "circle") { path.moveTo(x + r, y); path.arc(x, y, r, 0, 2 * Math.PI); }
  else if (shape === "square") path.rect(x - r * 0.9, y - r * 0.9, r * 1.8, r * 1.8);
  else if (shape === "triangle") { path.moveTo(x, y - r * 1.15); path.lineTo(x + r, y + r * 0.8); path.lineTo(x - r, y + r * 0.8); path.closePath(); }
  else { path.moveTo(x, y - r * 1.2); path.lineTo(x + r * 1.2, y); path.lineTo(x, y + r * 1.2); path.lineTo(x - r * 1.2, y); path.closePath(); }
}

const wordOf = (colour) => {
  const [red, green, blue] = colour.match(/[\d.]+/g).map(Number);
  return (255 << 24 | blue << 16 | green << 8 | red) >>> 0;  // as the bytes red, green, blue, alpha
};

// Of one area of a picture; sizes in its units, `ratio` pixels of the screen each.
export class Squares {
  constructor(area, ratio, side) {
    Object.assign(this, { ratio, x0: Math.floor(area.left * ratio), y0: Math.floor(area.top * ratio), side: Math.max(2, Math.round(side * ratio)) });
    this.width = Math.ceil(area.right * ratio) - this.x0;
    this.height = Math.ceil(area.bottom * ratio) - this.y0;
    this.image = new ImageData(this.width, this.height);
    this.words = new Uint32Array(this.image.data.buffer);
    this.known = new Map();
  }
  add(x, y, colour) {
    if (!this.known.has(colour)) this.known.set(colour, wordOf(colour));
    const word = this.known.get(colour), { side, width, height, words } = this;
    const left = Math.round(x * this.ratio - side / 2) - this.x0, top = Math.round(y * this.ratio - side / 2) - this.y0;
    const right = Math.min(width, left + side), bottom = Math.min(height, top + side);
    for (let row = Math.max(0, top); row < bottom; ++row) words.fill(word, row * width + Math.max(0, left), row * width + right);
  }
  // c: the context of the picture, which clips and covers as for any other drawing.
  paint(c) {
    const canvas = document.createElement("canvas");
    canvas.width = this.width;
    canvas.height = this.height;
    canvas.getContext("2d").putImageData(this.image, 0, 0);
    c.save();
    c.setTransform(1, 0, 0, 1, 0, 0);
    c.drawImage(canvas, this.x0, this.y0);
    c.restore();
  }
}
