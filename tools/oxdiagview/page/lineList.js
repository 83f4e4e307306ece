'use strict';

// The cells of a row behind the number, in order: title, whether the trace has it, text of a line.
const kCells = [
  {name: 'time', title: 'Time', has: (model) => model.has(model.time),
    text: (model, line) => model.timeText(line)},
  {name: 'delta', title: 'Delta', has: (model) => model.has(model.delta),
    text: (model, line) => model.spanText(model.delta[line])},
  {name: 'thread', title: 'Thread', has: (model) => model.threads.length > 0,
    text: (model, line) => model.threads[model.thread[line]] ?? ''},
  {name: 'verbosity', title: 'Verb.', has: (model) => model.has(model.verbosity),
    text: (model, line) => model.verbosity[line] < 0 ? '' : String(model.verbosity[line])},
  {name: 'component', title: 'Component', has: (model) => model.components.length > 1,
    text: (model, line) => model.components[model.component[line]] ?? ''},
  {name: 'source', title: 'Source', has: (model) => model.has(model.sourceLine) || model.files.length > 0,
    text: (model, line) => model.source(line)},
];

const kLowVerbosity = 100;
const kHighVerbosity = 140;
const kMostIndent = 40;
const kDimKinds = [kKind.foreign, kKind.dump, kKind.legend];

function element(name, className, text) {
  const made = document.createElement(name);
  if (className) made.className = className;
  if (text !== undefined) made.textContent = text;
  return made;
}

// The list of lines: only the rows that are seen are elements of the page.
class LineList {
  constructor(view, model, handlers) {
    this.view = view;
    this.rows = view.querySelector('#rows');
    this.header = view.querySelector('#columns');
    this.model = model;
    this.handlers = handlers;
    this.cells = kCells.filter((cell) => cell.has(model));
    this.lines = new Int32Array(0);
    this.folded = new Set();
    this.needle = '';
    this.selected = -1;
    this.pool = [];
    this.makeHeader();
    this.listen();
  }

  makeHeader() {
    const titles = [['number', 'Line'], ...this.cells.map((cell) => [cell.name, cell.title]),
                    ['message', 'Text']];
    for (const [name, title] of titles) {
      const cell = element('span', `cell ${name}`, title);
      cell.setAttribute('role', 'columnheader');
      this.header.append(cell);
    }
    this.view.setAttribute('aria-colcount', titles.length);
  }

  listen() {
    this.view.addEventListener('scroll', () => this.draw());
    new ResizeObserver(() => this.resize()).observe(this.view);
    this.rows.addEventListener('click', (event) => {
      const row = event.target.closest('.row');
      if (!row) return;
      if (event.target.closest('.twisty')) this.handlers.toggle(Number(row.dataset.line));
      this.handlers.select(Number(row.dataset.line));
    });
    this.rows.addEventListener('dblclick', (event) => {
      const row = event.target.closest('.row');
      if (row && !event.target.closest('.twisty')) this.handlers.toggle(Number(row.dataset.line));
    });
  }

  // Who sees the selected line goes on seeing it.
  resize() {
    const position = this.positionOf(this.selected);
    const isSeen = this.pool.some((row) => !row.hidden && Number(row.dataset.line) === this.selected);
    if (position >= 0 && isSeen) this.scrollTo(position);
    this.draw();
  }

  rowHeight() {
    return this.height ??= parseFloat(getComputedStyle(document.documentElement).getPropertyValue('--row'));
  }

  // How many rows fit below the titles.
  page() {
    return Math.max(1, Math.floor((this.view.clientHeight - this.header.offsetHeight) / this.rowHeight()));
  }

  show(lines, folded, needle) {
    this.lines = lines;
    this.folded = folded;
    this.needle = needle;
    this.rows.style.height = `${lines.length * this.rowHeight()}px`;
    this.view.setAttribute('aria-rowcount', lines.length + 1);
    this.draw();
  }

  draw() {
    const first = Math.max(0, Math.floor(this.view.scrollTop / this.rowHeight()) - 2);
    const last = Math.min(this.lines.length, first + this.page() + 6);
    while (this.pool.length < last - first) this.addRow();
    this.pool.forEach((row, index) => {
      row.hidden = first + index >= last;
      if (!row.hidden) this.fill(row, first + index);
    });
    this.tellSelected();
  }

  addRow() {
    const row = element('div', 'row');
    row.setAttribute('role', 'row');
    this.rows.append(row);
    this.pool.push(row);
  }

  fill(row, position) {
    const line = this.lines[position];
    row.id = `line${line}`;
    row.dataset.line = line;
    row.style.transform = `translateY(${position * this.rowHeight()}px)`;
    row.className = `row ${this.classOf(line)}`;
    row.setAttribute('aria-rowindex', position + 2);
    row.setAttribute('aria-level', this.model.depth[line] + 1);
    row.setAttribute('aria-selected', line === this.selected);
    if (this.model.isFoldable(line)) row.setAttribute('aria-expanded', !this.folded.has(line));
    else row.removeAttribute('aria-expanded');
    row.replaceChildren(this.cell('number', String(this.model.number[line])),
                        ...this.cells.map((cell) => this.cell(cell.name, cell.text(this.model, line))),
                        this.message(line));
  }

  classOf(line) {
    const verbosity = this.model.verbosity[line];
    const classes = [];
    if (line === this.selected) classes.push('selected');
    if (verbosity >= 0 && verbosity < kLowVerbosity) classes.push('low');
    if (verbosity >= kHighVerbosity && this.model.flags[line] & kFlag.prefixed) classes.push('high');
    if (kDimKinds.includes(this.model.kind[line])) classes.push('dim');
    if (this.model.mark[line] === kMark.warning) classes.push('warning');
    if (this.model.mark[line] === kMark.failure) classes.push('failure');
    return classes.join(' ');
  }

  cell(name, text) {
    const cell = element('span', `cell ${name}`, text);
    cell.setAttribute('role', 'gridcell');
    if (name === 'source') cell.title = text;
    return cell;
  }

  message(line) {
    const cell = element('span', 'cell message');
    cell.setAttribute('role', 'gridcell');
    cell.append('  '.repeat(Math.min(this.model.depth[line], kMostIndent)));
    cell.append(this.twisty(line));
    if (this.model.mark[line] === kMark.warning) cell.append(this.sign('▲ ', 'Warning'));
    if (this.model.mark[line] === kMark.failure) cell.append(this.sign('✖ ', 'Failure'));
    this.appendText(cell, line);
    cell.append(element('span', 'note', this.noteOf(line)));
    return cell;
  }

  sign(character, meaning) {
    const sign = element('span', '', character);
    sign.setAttribute('role', 'img');
    sign.setAttribute('aria-label', meaning);
    return sign;
  }

  twisty(line) {
    const isFoldable = this.model.isFoldable(line);
    const twisty = element('span', isFoldable ? 'twisty' : '', !isFoldable ? '  ' :
                           this.folded.has(line) ? '▸ ' : '▾ ');
    twisty.setAttribute('aria-hidden', 'true');
    return twisty;
  }

  // A text that is found is marked; more than the row can show is not read.
  appendText(cell, line) {
    const text = this.model.text[line].slice(0, 1000);
    const lower = text.toLowerCase();
    let from = 0;
    const isSameLength = lower.length === text.length;
    for (let at; this.needle && isSameLength && (at = lower.indexOf(this.needle, from)) >= 0;) {
      const end = at + this.needle.length;
      cell.append(text.slice(from, at), element('mark', '', text.slice(at, end)));
      from = end;
    }
    cell.append(text.slice(from));
  }

  // What stands behind the text.
  noteOf(line) {
    const {model} = this;
    const parts = [];
    if (this.folded.has(line)) parts.push(`${countText(model.size[line])} lines`);
    if (model.end[line] >= 0) parts.push(model.spanText(model.duration(line)));
    if (model.flags[line] & kFlag.cut) parts.push('cut: the line goes on');
    if (model.flags[line] & kFlag.unended) parts.push('the trace ends within this line');
    const note = parts.filter((part) => part !== '').join(', ');
    return note === '' ? '' : `  ${note}`;
  }

  tellSelected() {
    const isDrawn = this.pool.some((row) => !row.hidden && Number(row.dataset.line) === this.selected);
    if (isDrawn) this.view.setAttribute('aria-activedescendant', `line${this.selected}`);
    else this.view.removeAttribute('aria-activedescendant');
  }

  positionOf(line) {
    const position = lowerBound(this.lines, line);
    return this.lines[position] === line ? position : -1;
  }

  select(line) {
    this.selected = line;
    const position = this.positionOf(line);
    if (position >= 0) this.scrollTo(position);
    this.draw();
  }

  // As far as it takes to see the row; far away it comes to the middle.
  scrollTo(position) {
    const top = position * this.rowHeight();
    const height = this.page() * this.rowHeight();
    const above = top - this.view.scrollTop;
    if (above >= 0 && above + this.rowHeight() <= height) return;
    if (above < -height || above > 2 * height) this.view.scrollTop = top - height / 2;
    else this.view.scrollTop = above < 0 ? top : top + this.rowHeight() - height;
  }
}
