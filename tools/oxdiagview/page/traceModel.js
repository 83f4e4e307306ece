'use strict';

// The numbers of the data (tPageFormat.h).
const kKind = {line: 0, blockBegin: 1, blockEnd: 2, assertion: 3, status: 4, dump: 5, legend: 6, foreign: 7};
const kMark = {none: 0, warning: 1, failure: 2};
const kFlag = {prefixed: 1, cut: 2, unended: 4};

// The lines of a trace, in columns; how blocks contain them; where they are on the time line. A line
// is named by its index.
class TraceModel {
  constructor(data) {
    this.title = data.title;
    this.leftOut = data.leftOut;
    this.isInTicks = data.isInTicks;
    this.components = data.components;
    this.files = data.files;
    this.threads = data.threads;
    this.count = data.lines.length;
    this.takeColumns(data.lines);
    this.findBlocks();
    this.place();
  }

  takeColumns(lines) {
    const column = (kind, index) => kind.from(lines, (line) => line[index]);
    const times = (index) => Float64Array.from(lines, (line) => line[index] ?? NaN);
    this.number = column(Float64Array, 0);
    this.kind = column(Uint8Array, 1);
    this.mark = column(Uint8Array, 2);
    this.depth = column(Uint32Array, 3);
    this.component = column(Int32Array, 4);
    this.file = column(Int32Array, 5);
    this.sourceLine = column(Int32Array, 6);
    this.verbosity = column(Int32Array, 7);
    this.thread = column(Int32Array, 8);
    this.time = times(9);
    this.delta = times(10);
    this.flags = column(Uint8Array, 11);
    this.text = lines.map((line) => line[12]);
    this.name = new Map();
    lines.forEach((line, index) => { if (line.length > 13) this.name.set(index, line[13]); });
    this.inherit();
  }

  // A line without a prefix belongs to the one before it: the rest of a status, of a dump, of a text.
  inherit() {
    const kinds = [kKind.status, kKind.dump, kKind.foreign];
    const columns = [this.thread, this.component, this.verbosity, this.depth];
    for (let line = 1; line < this.count; ++line) {
      if (this.flags[line] & kFlag.prefixed || !kinds.includes(this.kind[line])) continue;
      columns.forEach((column) => { column[line] = column[line - 1]; });
    }
  }

  // parent[line] is the block entry around the line in its thread, or -1; end[entry] is the exit, or
  // -1; until[entry] the first line behind that is known not to be within, or the exit, or the last
  // line of all; size[entry] counts the lines within.
  findBlocks() {
    this.parent = new Int32Array(this.count).fill(-1);
    this.end = new Int32Array(this.count).fill(-1);
    this.until = new Int32Array(this.count).fill(this.count - 1);
    this.size = new Int32Array(this.count);
    const openOf = new Map();
    for (let line = 0; line < this.count; ++line) {
      const thread = this.thread[line];
      if (!openOf.has(thread)) openOf.set(thread, []);
      const open = openOf.get(thread);
      if (this.kind[line] === kKind.blockEnd) this.close(open, line);
      if (this.kind[line] === kKind.blockBegin) this.leaveOthers(open, line);
      if (this.parent[line] < 0 && open.length > 0) this.parent[line] = open[open.length - 1];
      if (this.kind[line] === kKind.blockBegin) open.push(line);
    }
    for (let line = this.count - 1; line >= 0; --line) {
      if (this.parent[line] >= 0) this.size[this.parent[line]] += 1 + this.size[line];
    }
  }

  // An exit ends the innermost block of its name, and those within it whose exit was not written.
  // One without entry ends nothing.
  close(open, line) {
    const name = this.name.get(line);
    let at = open.length - 1;
    while (at >= 0 && this.name.get(open[at]) !== name) --at;
    if (at < 0) return;
    this.end[open[at]] = line;
    this.parent[line] = open[at];
    this.leave(open, at, line);
  }

  // A block that begins no deeper than others ends them: their exits were not written. Threads move
  // each other's depth, so of several nothing follows.
  leaveOthers(open, line) {
    if (this.threads.length > 1) return;
    let at = open.length;
    while (at > 0 && this.depth[open[at - 1]] >= this.depth[line]) --at;
    this.leave(open, at, line);
  }

  leave(open, at, line) {
    while (open.length > at) this.until[open.pop()] = line;
  }

  // at[line] is where the line is on the time line: its time, or that of the line before it; in a
  // trace without times its index.
  place() {
    this.hasTimes = this.time.some((time) => !Number.isNaN(time));
    this.at = Float64Array.from(this.time);
    let last = this.hasTimes ? this.time.find((time) => !Number.isNaN(time)) : 0;
    this.first = Infinity;
    this.last = -Infinity;
    for (let line = 0; line < this.count; ++line) {
      if (!this.hasTimes) last = line;
      else if (!Number.isNaN(this.time[line])) last = this.time[line];
      this.at[line] = last;
      this.first = Math.min(this.first, last);
      this.last = Math.max(this.last, last);
    }
    if (this.count === 0) this.first = this.last = 0;
  }

  has(column) {
    return column.some((value) => !(Number.isNaN(value) || value < 0));
  }

  isFoldable(line) {
    return this.kind[line] === kKind.blockBegin && this.size[line] > 0;
  }

  // From entry to exit, or NaN.
  duration(entry) {
    return this.end[entry] < 0 ? NaN : this.time[this.end[entry]] - this.time[entry];
  }

  // A span of time as text; nothing for NaN.
  spanText(span) {
    if (Number.isNaN(span)) return '';
    return this.isInTicks ? `${countText(Math.round(span))} ticks` : durationText(span);
  }

  // When the line was written: seconds since the first, with microseconds behind the point, so that
  // a column of them can be compared; or ticks.
  timeText(line) {
    if (Number.isNaN(this.time[line])) return '';
    return this.isInTicks ? countText(this.time[line]) : (this.time[line] / 1e9).toFixed(6);
  }

  source(line) {
    if (this.file[line] < 0) return this.sourceLine[line] < 0 ? '' : String(this.sourceLine[line]);
    const file = this.files[this.file[line]];
    return this.sourceLine[line] < 0 ? file : `${file}:${this.sourceLine[line]}`;
  }

  // The list is empty where nothing is marked.
  marked() {
    const lines = [];
    this.mark.forEach((mark, line) => { if (mark !== kMark.none) lines.push(line); });
    return lines;
  }
}

// Nanoseconds in a person's units, four digits.
function durationText(nanoseconds) {
  const size = Math.abs(nanoseconds);
  for (const [unit, name] of [[1e9, 's'], [1e6, 'ms'], [1e3, 'µs']]) {
    if (size >= unit) return `${Number((nanoseconds / unit).toPrecision(4))} ${name}`;
  }
  return `${Math.round(nanoseconds)} ns`;
}

function countText(count) {
  return count.toLocaleString('en-US');
}
