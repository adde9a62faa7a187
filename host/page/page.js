'use strict';
// Shows the values of a map under the pointer, or of the node that the arrow keys choose. Everything else of the page
// works without a script.

// The codes of a grid: see GridCode.h. Differences along rows and along columns are added up again.
async function unpackCodes(text, columns, rows) {
  const packed = Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream('deflate'));
  const bytes = new Uint8Array(await new Response(stream).arrayBuffer());
  const count = columns * rows;
  const codes = new Uint16Array(count);
  for (let row = 0; row < rows; ++row) {
    let sum = 0;
    for (let column = 0; column < columns; ++column) {
      const i = row * columns + column;
      sum += bytes[i] + 256 * bytes[count + i];
      codes[i] = sum + (row > 0 ? codes[i - columns] : 0);
    }
  }
  return codes;
}

// The digits that the code stands for, and no others.
function valueText(code, base, exponent) {
  if (code === 0) return 'none';
  const digits = base + code - 1;
  if (exponent <= 0 && exponent >= -15) return (digits / 10 ** -exponent).toFixed(-exponent);
  return Number(digits + 'e' + exponent).toExponential(Math.max(String(Math.abs(digits)).length - 1, 0));
}

// As many digits as tell neighbouring nodes apart, and two more.
function coordinateText(value, step) {
  const size = Math.max(Math.abs(value), step);
  const digits = step > 0 ? Math.ceil(Math.log10(size / step)) + 3 : 7;
  return String(Number(value.toPrecision(Math.min(Math.max(digits, 4), 15))));
}

class Axis {
  constructor(ends, count) {
    [this.low, this.high] = ends.split(' ').map(Number);
    this.count = count;
    this.step = count > 1 ? (this.high - this.low) / (count - 1) : 0;
  }
  node(i) {
    return i === this.count - 1 && i > 0 ? this.high : this.low + i * this.step;
  }
  nearest(i) {
    return Math.min(Math.max(Math.round(i), 0), this.count - 1);
  }
}

class MapReader {
  constructor(element) {
    const data = element.dataset;
    this.element = element;
    this.readout = element.querySelector('.readout');
    this.columns = Number(data.columns);
    this.rows = Number(data.rows);
    this.x = new Axis(data.x, this.columns);
    this.y = new Axis(data.y, this.rows);
    this.plot = data.plot.split(' ').map(Number);
    this.layers = [...element.querySelectorAll('.layer')];
    this.node = [Math.floor(this.columns / 2), Math.floor(this.rows / 2)];
    this.codes = null;
    for (const layer of this.layers) {
      const svg = layer.querySelector(':scope > svg');
      if (!svg) continue;
      for (const kind of ['pointermove', 'pointerdown']) svg.addEventListener(kind, (event) => this.point(svg, event));
      svg.addEventListener('keydown', (event) => this.press(event));
    }
  }

  // A profile's nodes lie from rim to rim, a raster's in the middle of cells.
  point(svg, event) {
    const place = new DOMPoint(event.clientX, event.clientY).matrixTransform(svg.getScreenCTM().inverse());
    const [left, top, width, height] = this.plot;
    const across = (place.x - left) / width;
    const up = 1 - (place.y - top) / height;
    if (across < 0 || across > 1 || up < 0 || up > 1) return;
    this.node = this.rows > 1
      ? [this.x.nearest(across * this.columns - 0.5), this.y.nearest(up * this.rows - 0.5)]
      : [this.x.nearest(across * (this.columns - 1)), 0];
    this.show();
  }

  press(event) {
    const step = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] }[event.key];
    if (!step) return;
    event.preventDefault();
    const stride = event.shiftKey ? 10 : 1;
    this.node = [this.x.nearest(this.node[0] + stride * step[0]), this.y.nearest(this.node[1] + stride * step[1])];
    this.show();
  }

  async show() {
    this.codes ??= Promise.all(this.layers.map((layer) => unpackCodes(layer.dataset.codes, this.columns, this.rows)));
    const codes = await this.codes;
    const [column, row] = this.node;
    const data = this.element.dataset;
    const units = data.units ? ' ' + data.units : '';
    let text = data.xName + ' ' + coordinateText(this.x.node(column), this.x.step) + units;
    if (data.yName) text += ', ' + data.yName + ' ' + coordinateText(this.y.node(row), this.y.step) + units;
    const values = this.layers.map((layer, i) => layer.dataset.name + ' ' +
      valueText(codes[i][row * this.columns + column], Number(layer.dataset.base), Number(layer.dataset.exponent)));
    this.readout.textContent = text + ': ' + values.join(', ');
    this.mark();
  }

  mark() {
    const [left, top, width, height] = this.plot;
    const [column, row] = this.node;
    const x = left + width * (this.rows > 1 ? (column + 0.5) / this.columns : column / Math.max(this.columns - 1, 1));
    const y = top + height * (1 - (row + 0.5) / this.rows);
    const path = this.rows > 1
      ? `M${x - 7} ${y}h4m6 0h4M${x} ${y - 7}v4m0 6v4`
      : `M${x} ${top}v${height}`;
    for (const layer of this.layers) {
      const svg = layer.querySelector(':scope > svg');
      if (!svg) continue;
      for (const name of ['pointer light', 'pointer']) {
        let mark = svg.querySelector(`[class="${name}"]`);
        if (!mark) {
          mark = document.createElementNS('http://www.w3.org/2000/svg', 'path');
          mark.setAttribute('class', name);
          svg.append(mark);
        }
        mark.setAttribute('d', path);
      }
    }
  }
}

if ('DecompressionStream' in window) {
  document.documentElement.classList.add('scripted');
  for (const element of document.querySelectorAll('.layers')) new MapReader(element);
}
