'use strict';

const kThemes = ['auto', 'light', 'dark'];

// What the parts of the page have to do with each other.
class Page {
  constructor(model) {
    this.model = model;
    this.filter = new LineFilter(model);
    this.folded = new Set();
    this.found = [];
    this.selected = -1;
    this.list = new LineList(byId('list'), model, {
      select: (line) => this.select(line),
      toggle: (line) => this.toggle(line),
    });
    this.timeLine = new TimeLine(byId('timeLine'), model, {
      zoom: (part) => this.zoom(part),
      goTo: (value) => this.goTo(value),
    });
    this.marks = model.marked();
    this.showTitle();
    this.makeChoices('components', model.components, this.filter.hiddenComponents);
    this.makeChoices('threads', model.threads, this.filter.hiddenThreads);
    byId('verbosityLabel').hidden = !model.has(model.verbosity);
    byId('foldAll').hidden = byId('unfoldAll').hidden = !model.kind.includes(kKind.blockBegin);
    this.chooseTheme(0);
    this.listen();
    this.update();
  }

  showTitle() {
    const {model} = this;
    byId('title').textContent = document.title = model.title.replace(/.*[/\\](?=.)/, '');
    byId('title').title = model.title;
    const facts = [`${countText(model.count)} lines`];
    if (model.hasTimes) facts.push(model.spanText(model.last - model.first));
    if (model.leftOut > 0) facts.push(`${countText(model.leftOut)} more lines are not in this page`);
    byId('facts').textContent = facts.join(', ');
    const failures = this.marks.filter((line) => model.mark[line] === kMark.failure).length;
    const warnings = this.marks.length - failures;
    byId('marks').textContent = `✖ ${plural(failures, 'failure')}  ▲ ${plural(warnings, 'warning')}`;
    byId('marks').disabled = this.marks.length === 0;
    byId('marks').className = failures > 0 ? 'hasFailure' : warnings > 0 ? 'hasWarning' : '';
  }

  // Boxes to tick, one a name; of a single name there is no choice.
  makeChoices(id, names, hidden) {
    byId(id).hidden = names.length < 2;
    names.forEach((name, index) => {
      const label = element('label', '', ` ${name}`);
      const box = element('input');
      box.type = 'checkbox';
      box.checked = true;
      box.addEventListener('change', () => {
        if (box.checked) hidden.delete(index);
        else hidden.add(index);
        byId(id).classList.toggle('narrowed', hidden.size > 0);
        this.update();
      });
      label.prepend(box);
      byId(id).querySelector('div').append(label);
    });
  }

  listen() {
    const onClick = (id, action) => byId(id).addEventListener('click', action);
    onClick('marks', () => this.step(this.marks, 1));
    onClick('theme', () => this.chooseTheme((this.theme + 1) % kThemes.length));
    onClick('help', () => byId('keys').showModal());
    onClick('findOn', () => this.step(this.found, 1));
    onClick('findBack', () => this.step(this.found, -1));
    onClick('foldAll', () => this.foldAll());
    onClick('unfoldAll', () => this.unfoldAll());
    onClick('reset', () => this.reset());
    onClick('zoomOut', () => this.zoom(null));
    byId('find').addEventListener('input', () => this.find());
    byId('findOnly').addEventListener('change', (event) => {
      this.filter.foundOnly = event.target.checked;
      this.update();
    });
    byId('marksOnly').addEventListener('change', (event) => {
      this.filter.marksOnly = event.target.checked;
      this.update();
    });
    byId('verbosity').addEventListener('input', (event) => {
      this.filter.minVerbosity = event.target.value === '' ? null : Number(event.target.value);
      this.update();
    });
    document.addEventListener('keydown', (event) => this.keyDown(event));
    document.addEventListener('click', (event) => this.closeChoices(event.target));
    window.matchMedia('(prefers-color-scheme: dark)')
        .addEventListener('change', () => this.chooseTheme(this.theme));
  }

  closeChoices(target) {
    for (const choice of document.querySelectorAll('.choice[open]')) {
      if (!choice.contains(target)) choice.open = false;
    }
  }

  chooseTheme(theme) {
    this.theme = theme;
    const isDark = window.matchMedia('(prefers-color-scheme: dark)').matches;
    const name = kThemes[theme] === 'auto' ? (isDark ? 'dark' : 'light') : kThemes[theme];
    document.documentElement.dataset.theme = name;
    byId('theme').textContent = `Colors: ${kThemes[theme]}`;
    this.timeLine.draw();
  }

  // Shows what the filter takes now.
  update() {
    const lines = this.filter.shown(this.folded);
    this.found = this.filter.found();
    this.list.show(lines, this.folded, this.filter.needle);
    this.timeLine.show(lines, this.selected);
    byId('zoomOut').hidden = this.filter.range === null;
    byId('nothing').hidden = lines.length > 0;
    byId('nothing').textContent = this.model.count === 0 ? 'The trace is empty.' :
        'No line is shown. "Show all" takes the filters away.';
    this.tellFound();
    this.tell(`${countText(lines.length)} of ${countText(this.model.count)} lines shown`);
    this.describeTimeLine();
  }

  tell(sentence) {
    byId('told').textContent = sentence;
  }

  describeTimeLine() {
    const {range} = this.timeLine;
    byId('timeLine').setAttribute('aria-label',
        `Time line from ${this.timeLine.text(range[0])} to ${this.timeLine.text(range[1])}, ` +
        `${plural(this.marks.length, 'mark')}; plus and minus zoom, arrows move, 0 shows all`);
  }

  tellFound() {
    const {found} = this;
    const at = lowerBound(found, this.selected);
    const isAt = at < found.length && found[at] === this.selected;
    byId('found').textContent = this.filter.needle === '' ? '' : found.length === 0 ? 'none' :
        isAt ? `${countText(at + 1)} of ${countText(found.length)}` : countText(found.length);
    byId('findOn').disabled = byId('findBack').disabled = found.length === 0;
  }

  find() {
    clearTimeout(this.findTimer);
    this.findTimer = setTimeout(() => this.findNow(), 60);
  }

  findNow() {
    clearTimeout(this.findTimer);
    this.findTimer = undefined;
    this.filter.needle = byId('find').value.toLowerCase();
    this.update();
    const next = lowerBound(this.found, Math.max(0, this.selected));
    if (this.found.length > 0) this.select(this.found[next % this.found.length]);
  }

  // The next line of a sorted list behind the selected one, or the one before; around the end.
  step(lines, direction) {
    if (lines.length === 0) return;
    const at = lowerBound(lines, this.selected + (direction > 0 ? 1 : 0));
    const next = direction > 0 ? at : at - 1;
    this.reveal(lines[(next + lines.length) % lines.length]);
  }

  // A line in a folded block, or one that a filter hides, is shown before it is selected.
  reveal(line) {
    let isHidden = !this.filter.takes(line);
    if (isHidden) this.clearFilters();
    for (let around = this.model.parent[line]; around >= 0; around = this.model.parent[around]) {
      isHidden = this.folded.delete(around) || isHidden;
    }
    if (isHidden) this.update();
    this.select(line);
  }

  select(line) {
    this.selected = line;
    this.showDetail(line);
    this.list.select(line);
    this.timeLine.select(line);
    this.tellFound();
  }

  showDetail(line) {
    const {model} = this;
    byId('detail').hidden = line < 0;
    if (line < 0) return;
    const facts = [['Line', countText(model.number[line])],
                   ['Component', model.components[model.component[line]] ?? ''],
                   ['Source', model.source(line)],
                   ['Thread', model.threads[model.thread[line]] ?? ''],
                   ['Verbosity', model.verbosity[line] < 0 ? '' : String(model.verbosity[line])],
                   ['Time', model.timeText(line)],
                   ['Delta', model.spanText(model.delta[line])],
                   ['Block takes', model.spanText(model.duration(line))]];
    const list = element('dl');
    for (const [name, value] of facts) {
      if (value === '') continue;
      const pair = element('div');
      pair.append(element('dt', '', name), element('dd', '', value));
      list.append(pair);
    }
    byId('detail').replaceChildren(list, element('pre', '', model.text[line]));
  }

  toggle(line) {
    if (!this.model.isFoldable(line)) return;
    if (!this.folded.delete(line)) this.folded.add(line);
    this.update();
  }

  foldAll() {
    for (let line = 0; line < this.model.count; ++line) {
      if (this.model.isFoldable(line)) this.folded.add(line);
    }
    this.update();
    this.selectOutermost();
  }

  // The selected line may be in a block that is folded now.
  selectOutermost() {
    let line = this.selected;
    for (let around = line; around >= 0; around = this.model.parent[around]) line = around;
    if (line >= 0) this.select(line);
  }

  unfoldAll() {
    this.folded.clear();
    this.update();
    if (this.selected >= 0) this.select(this.selected);
  }

  clearFilters() {
    for (const box of document.querySelectorAll('.choice input')) box.checked = true;
    for (const choice of document.querySelectorAll('.choice')) choice.classList.remove('narrowed');
    this.filter.hiddenComponents.clear();
    this.filter.hiddenThreads.clear();
    this.filter.minVerbosity = null;
    this.filter.marksOnly = this.filter.foundOnly = false;
    this.filter.range = null;
    byId('verbosity').value = '';
    byId('findOnly').checked = byId('marksOnly').checked = false;
    this.timeLine.zoomTo(null);
  }

  reset() {
    byId('find').value = this.filter.needle = '';
    this.clearFilters();
    this.unfoldAll();
  }

  zoom(part) {
    this.filter.range = part;
    this.timeLine.zoomTo(part);
    this.update();
    this.list.view.scrollTop = 0;
    if (this.selected >= 0 && this.list.positionOf(this.selected) >= 0) this.select(this.selected);
  }

  // The shown line that is nearest to a place of the time line.
  goTo(value) {
    let nearest = -1;
    let distance = Infinity;
    for (const line of this.list.lines) {
      const away = Math.abs(this.model.at[line] - value);
      if (away < distance) [nearest, distance] = [line, away];
    }
    if (nearest >= 0) this.select(nearest);
  }

  keyDown(event) {
    if (event.ctrlKey || event.altKey || event.metaKey || byId('keys').open) return;
    if (event.target.id === 'find') return this.keyInFind(event);
    if (event.key === 'Escape') return this.keyEscape();
    if (event.target.matches('input')) return;
    const keys = byId('timeLine').contains(event.target) && event.target.id === 'timeLine' ?
        this.timeLineKeys() : {};
    const onButton = event.target.matches('button, summary') && [' ', 'Enter'].includes(event.key);
    const action = onButton ? undefined : {...this.pageKeys(), ...this.listKeys(), ...keys}[event.key];
    if (!action) return;
    event.preventDefault();
    action();
  }

  keyEscape() {
    this.closeChoices(null);
    this.timeLine.abandon();
    this.list.view.focus();
  }

  keyInFind(event) {
    if (event.key === 'Escape') return this.list.view.focus();
    if (event.key !== 'Enter') return;
    if (this.findTimer !== undefined) return this.findNow();
    this.step(this.found, event.shiftKey ? -1 : 1);
  }

  pageKeys() {
    return {
      '/': () => { byId('find').focus(); byId('find').select(); },
      n: () => this.step(this.found, 1),
      N: () => this.step(this.found, -1),
      m: () => this.step(this.marks, 1),
      M: () => this.step(this.marks, -1),
      '[': () => this.foldAll(),
      ']': () => this.unfoldAll(),
      t: () => this.changeFocus(),
      '?': () => byId('keys').showModal(),
    };
  }

  changeFocus() {
    const isInTimeLine = document.activeElement === byId('timeLine');
    (isInTimeLine ? this.list.view : byId('timeLine')).focus();
  }

  listKeys() {
    return {
      ArrowDown: () => this.moveBy(1),
      ArrowUp: () => this.moveBy(-1),
      PageDown: () => this.moveBy(this.list.page()),
      PageUp: () => this.moveBy(-this.list.page()),
      Home: () => this.moveBy(-Infinity),
      End: () => this.moveBy(Infinity),
      ArrowLeft: () => this.foldOrLeave(),
      ArrowRight: () => { if (this.folded.has(this.selected)) this.toggle(this.selected); },
      Enter: () => this.toggle(this.selected),
      ' ': () => this.toggle(this.selected),
    };
  }

  timeLineKeys() {
    return {
      '+': () => this.zoom(this.timeLine.zoomed(0.5)),
      '=': () => this.zoom(this.timeLine.zoomed(0.5)),
      '-': () => this.zoom(this.timeLine.zoomed(2)),
      '0': () => this.zoom(null),
      ArrowLeft: () => this.zoom(this.timeLine.moved(-0.25)),
      ArrowRight: () => this.zoom(this.timeLine.moved(0.25)),
    };
  }

  moveBy(rows) {
    const {lines} = this.list;
    if (lines.length === 0) return;
    const here = lowerBound(lines, this.selected);
    const isHere = this.selected >= 0 && lines[here] === this.selected;
    const from = isHere || rows < 0 ? here : here - 1;
    this.select(lines[Math.min(Math.max(from + rows, 0), lines.length - 1)]);
  }

  foldOrLeave() {
    const line = this.selected;
    if (line < 0) return;
    if (this.model.isFoldable(line) && !this.folded.has(line)) return this.toggle(line);
    if (this.model.parent[line] >= 0) this.select(this.model.parent[line]);
  }
}

function byId(id) {
  return document.getElementById(id);
}

function plural(count, word) {
  return `${countText(count)} ${word}${count === 1 ? '' : 's'}`;
}

const page = new Page(new TraceModel(JSON.parse(byId('trace').textContent)));
