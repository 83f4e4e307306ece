'use strict';

// Which lines are shown, and which are found.
class LineFilter {
  constructor(model) {
    this.model = model;
    this.lowerText = null;
    this.reset();
  }

  reset() {
    this.hiddenComponents = new Set();
    this.hiddenThreads = new Set();
    this.minVerbosity = null;
    this.marksOnly = false;
    this.needle = '';
    this.foundOnly = false;
    this.range = null;
  }

  // Lines without the field, such as those of others, are shown whatever is chosen.
  takes(line) {
    const model = this.model;
    if (this.range && (model.at[line] < this.range[0] || model.at[line] > this.range[1])) return false;
    if (this.hiddenComponents.has(model.component[line])) return false;
    if (this.hiddenThreads.has(model.thread[line])) return false;
    const verbosity = model.verbosity[line];
    if (this.minVerbosity !== null && verbosity >= 0 && verbosity < this.minVerbosity) return false;
    if (this.marksOnly && model.mark[line] === kMark.none) return false;
    return !(this.foundOnly && this.needle) || this.finds(line);
  }

  finds(line) {
    return this.needle !== '' && this.lowerCase()[line].includes(this.needle);
  }

  lowerCase() {
    this.lowerText ??= this.model.text.map((text, line) =>
      `${text}\n${this.model.source(line)}`.toLowerCase());
    return this.lowerText;
  }

  // The lines to show, without those in folded blocks.
  shown(folded) {
    const {count, parent} = this.model;
    const isWithin = new Uint8Array(count);
    const lines = new Int32Array(count);
    let length = 0;
    for (let line = 0; line < count; ++line) {
      const around = parent[line];
      isWithin[line] = around >= 0 && (isWithin[around] || folded.has(around)) ? 1 : 0;
      if (!isWithin[line] && this.takes(line)) lines[length++] = line;
    }
    return lines.subarray(0, length);
  }

  // The lines that are found, whether they are in folded blocks or not.
  found() {
    const lines = [];
    if (this.needle === '') return lines;
    for (let line = 0; line < this.model.count; ++line) {
      if (this.finds(line) && this.takes(line)) lines.push(line);
    }
    return lines;
  }
}

// The index of the first element that is not below the value, in a sorted list.
function lowerBound(sorted, value) {
  let low = 0;
  let high = sorted.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (sorted[middle] < value) low = middle + 1;
    else high = middle;
  }
  return low;
}
