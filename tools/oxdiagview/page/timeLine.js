'use strict';

const kMostLanes = 6;
const kLeastDrag = 5;  // pixels; less is a click
const kHistogramHeight = 0.42;  // of the whole
const kMarkHeight = 11;
const kLabelHeight = 15;
const kHighestLane = 16;

// How many lines are where, what is marked, and the blocks by depth. A drag zooms.
class TimeLine {
  constructor(view, model, handlers) {
    this.view = view;
    this.canvas = view.querySelector('canvas');
    this.selection = view.querySelector('.selection');
    this.model = model;
    this.handlers = handlers;
    this.whole = [model.first, model.last];
    this.range = this.whole;
    this.shown = new Int32Array(0);
    this.selected = -1;
    this.width = this.height = 0;
    this.blocks = this.findBlocks();
    this.lanes = this.blocks.reduce((most, block) => Math.max(most, block.lane + 1), 1);
    this.marks = model.marked();
    this.listen();
  }

  findBlocks() {
    const {count, kind, depth, until, at} = this.model;
    const blocks = [];
    for (let line = 0; line < count; ++line) {
      if (kind[line] !== kKind.blockBegin || depth[line] >= kMostLanes) continue;
      blocks.push({line, lane: depth[line], from: at[line], to: at[until[line]]});
    }
    return blocks;
  }

  listen() {
    new ResizeObserver(() => this.measure()).observe(this.view);
    this.canvas.addEventListener('pointerdown', (event) => this.begin(event));
    this.canvas.addEventListener('pointermove', (event) => this.move(event));
    this.canvas.addEventListener('pointerup', (event) => this.finish(event));
    this.canvas.addEventListener('pointercancel', () => this.abandon());
    this.canvas.addEventListener('dblclick', () => this.handlers.zoom(null));
  }

  measure() {
    this.width = this.canvas.clientWidth;
    this.height = this.canvas.clientHeight;
    this.draw();
  }

  begin(event) {
    if (event.button !== 0) return;
    this.canvas.setPointerCapture(event.pointerId);
    this.dragFrom = event.offsetX;
  }

  move(event) {
    this.canvas.title = this.text(this.valueAt(event.offsetX));
    if (this.dragFrom === undefined) return;
    const [left, right] = this.drag(event);
    this.selection.hidden = false;
    this.selection.style.left = `${left}px`;
    this.selection.style.width = `${right - left}px`;
  }

  drag(event) {
    const to = Math.min(Math.max(event.offsetX, 0), this.width);
    return [Math.min(this.dragFrom, to), Math.max(this.dragFrom, to)];
  }

  finish(event) {
    if (this.dragFrom === undefined) return;
    const [left, right] = this.drag(event);
    this.abandon();
    if (right - left < kLeastDrag) this.handlers.goTo(this.valueAt(left));
    else this.handlers.zoom([this.valueAt(left), this.valueAt(right)]);
  }

  abandon() {
    this.dragFrom = undefined;
    this.selection.hidden = true;
  }

  valueAt(x) {
    return this.range[0] + (this.range[1] - this.range[0]) * x / Math.max(1, this.width);
  }

  xOf(value) {
    const [first, last] = this.range;
    return last === first ? 0 : (value - first) / (last - first) * this.width;
  }

  // Of the whole when the part is null.
  zoomTo(part) {
    this.range = part ?? this.whole;
    this.draw();
  }

  // The part that a key asks for: around the middle, or moved; null for the whole.
  zoomed(factor) {
    const middle = (this.range[0] + this.range[1]) / 2;
    return this.clipped(middle, (this.range[1] - this.range[0]) * factor / 2);
  }

  moved(share) {
    const half = (this.range[1] - this.range[0]) / 2;
    return this.clipped((this.range[0] + this.range[1]) / 2 + 2 * half * share, half);
  }

  clipped(middle, half) {
    const [first, last] = this.whole;
    if (2 * half >= last - first) return null;
    const inside = Math.min(Math.max(middle, first + half), last - half);
    return [inside - half, inside + half];
  }

  text(value) {
    if (!this.model.hasTimes) return `line ${countText(Math.round(value) + 1)}`;
    return this.spanText(value - this.whole[0]);
  }

  spanText(span) {
    return this.model.hasTimes ? this.model.spanText(span) : `${countText(Math.round(span) + 1)} lines`;
  }

  show(lines, selected) {
    this.shown = lines;
    this.selected = selected;
    this.draw();
  }

  select(line) {
    this.selected = line;
    this.draw();
  }

  draw() {
    const {width, height} = this;
    const ratio = window.devicePixelRatio || 1;
    this.canvas.width = Math.round(width * ratio);
    this.canvas.height = Math.round(height * ratio);
    const pen = this.canvas.getContext('2d');
    pen.scale(ratio, ratio);
    this.readColors();
    const histogram = Math.floor(height * kHistogramHeight);
    this.drawHistogram(pen, histogram);
    this.drawBlocks(pen, histogram + kMarkHeight);
    this.drawMarks(pen, histogram);
    this.drawSelected(pen);
    this.drawLabels(pen);
  }

  readColors() {
    const style = getComputedStyle(document.documentElement);
    this.colors = {};
    for (const name of ['bar', 'block', 'blockEdge', 'text', 'dim', 'accent', 'warning', 'failure']) {
      this.colors[name] = style.getPropertyValue(`--${name}`);
    }
  }

  // The square root lets a single line be seen beside a thousand.
  drawHistogram(pen, height) {
    const step = 3;
    const bins = this.countLines(step);
    const most = bins.reduce((max, count) => Math.max(max, count), 1);
    pen.fillStyle = this.colors.bar;
    bins.forEach((count, bin) => {
      if (count === 0) return;
      const bar = Math.max(2, Math.sqrt(count / most) * (height - 4));
      pen.fillRect(bin * step, height - bar, step - 1, bar);
    });
  }

  countLines(step) {
    const bins = new Float64Array(Math.max(1, Math.ceil(this.width / step)));
    for (const line of this.shown) {
      const bin = Math.floor(this.xOf(this.model.at[line]) / step);
      if (bin >= 0 && bin <= bins.length) ++bins[Math.min(bin, bins.length - 1)];
    }
    return bins;
  }

  // Of blocks that would share a pixel in a lane the first is drawn.
  drawBlocks(pen, top) {
    const height = Math.min(kHighestLane, Math.floor((this.height - kLabelHeight - top) / this.lanes));
    const drawnTo = new Array(this.lanes).fill(-1);
    for (const {line, lane, from, to} of this.blocks) {
      const left = Math.max(0, this.xOf(from));
      const right = Math.min(this.width, this.xOf(to));
      if (right < 0 || left > this.width || right <= drawnTo[lane]) continue;
      const box = {left, top: top + lane * height, width: Math.max(1, right - left), height: height - 1};
      drawnTo[lane] = left + box.width;
      this.drawBlock(pen, box, this.model.name.get(line));
    }
  }

  drawBlock(pen, {left, top, width, height}, name) {
    pen.fillStyle = this.colors.block;
    pen.fillRect(left, top, width, height);
    pen.fillStyle = this.colors.blockEdge;
    pen.fillRect(left, top, 1, height);
    if (width < 40 || height < 9 || !name) return;
    pen.save();
    pen.beginPath();
    pen.rect(left, top, width, height);
    pen.clip();
    pen.fillStyle = this.colors.text;
    pen.font = `${Math.min(11, height)}px system-ui, sans-serif`;
    pen.textBaseline = 'middle';
    pen.fillText(name, left + 4, top + height / 2 + 0.5);
    pen.restore();
  }

  // A warning is a triangle, a failure a square: color alone does not tell them apart.
  drawMarks(pen, top) {
    const drawn = new Set();
    for (const line of this.marks) {
      const x = Math.round(this.xOf(this.model.at[line]));
      const isFailure = this.model.mark[line] === kMark.failure;
      const place = isFailure ? x : -1 - x;
      if (x < 0 || x > this.width || drawn.has(place)) continue;
      drawn.add(place);
      this.drawMark(pen, x, top, isFailure);
    }
  }

  drawMark(pen, x, top, isFailure) {
    pen.fillStyle = isFailure ? this.colors.failure : this.colors.warning;
    if (isFailure) return pen.fillRect(x - 3.5, top + 2, 7, 7);
    pen.beginPath();
    pen.moveTo(x, top + 1);
    pen.lineTo(x + 4.5, top + 9);
    pen.lineTo(x - 4.5, top + 9);
    pen.fill();
  }

  drawSelected(pen) {
    if (this.selected < 0) return;
    pen.fillStyle = this.colors.accent;
    pen.fillRect(Math.round(this.xOf(this.model.at[this.selected])), 0, 1.5, this.height);
  }

  drawLabels(pen) {
    const baseline = this.height - 4;
    pen.fillStyle = this.colors.dim;
    pen.font = '11px system-ui, sans-serif';
    const label = (align, x, text) => {
      pen.textAlign = align;
      pen.fillText(text, x, baseline);
    };
    label('left', 6, this.text(this.range[0]));
    label('center', this.width / 2, `${this.spanText(this.range[1] - this.range[0])} seen`);
    label('right', this.width - 6, this.text(this.range[1]));
  }
}
