// A table of songs of which only the rows in view are there. It is a grid for the keyboard: one cell at a time takes part in
// the order of Tab, arrows move from it.
//
// Written here because no packaged library fits: those with such a table build rows from strings of HTML or draw on a
// canvas, and need jQuery besides.

// Browsers cannot lay out an element of any height; beyond this one, a pixel of the scroll bar stands for more than one of
// the rows.
const tallest = 15e6;
// Paper has no end, but patience has.
const mostPrinted = 5000;

class SongTable {
  // `label` names it for those who hear it. `position` adds a column with the places in a list. `sorted(key)` is called
  // when a head is pressed, `opened(song)` when a row is.
  constructor({ label, position, sorted, opened }) {
    this.columns = position ? [{ key: 'order', label: '#', width: 4, text: () => '' }, ...columns] : columns;
    this.sorted = sorted;
    this.opened = opened;
    this.rows = [];
    this.active = { row: 0, column: 0 };
    this.printing = false;
    this.build(label);
    this.watch();
  }

  build(label) {
    this.buttons = this.columns.map((column) => make('button', {
      type: 'button', tabindex: -1, onclick: () => this.sorted(column.key),
    }, column.label));
    this.heads = this.columns.map((column, at) => make('th', {
      role: 'columnheader', scope: 'col', 'aria-colindex': at + 1, class: this.classOf(column),
    }, this.buttons[at]));
    this.body = make('tbody', { role: 'rowgroup' });
    this.table = make('table', {
      role: 'grid', class: 'songs', 'aria-label': label, 'aria-colcount': this.columns.length, 'aria-readonly': 'true',
      '--tracks': this.columns.map(({ width, grows }) => `minmax(${width}rem, ${grows ? width : 0}fr)`).join(' '),
    }, make('thead', { role: 'rowgroup' }, make('tr', { role: 'row', 'aria-rowindex': 1 }, ...this.heads)), this.body);
    this.window = make('div', { class: 'window' }, this.table);
    const width = this.columns.reduce((sum, column) => sum + column.width, 1.4);
    this.height = make('div', { class: 'height', '--width': `${width}rem` }, this.window);
    this.more = make('p', { class: 'more' });
    this.node = make('div', { class: 'scroller', tabindex: -1 }, this.height, this.more);
  }

  watch() {
    this.node.addEventListener('scroll', () => this.draw());
    this.node.addEventListener('keydown', (event) => this.press(event));
    this.body.addEventListener('click', (event) => this.click(event));
    this.table.addEventListener('focusin', (event) => this.take(event.target));
    new ResizeObserver(() => this.draw()).observe(this.node);
  }

  classOf(column) {
    return `${column.key}${column.text ? ' number' : ''}${column.extra ? ' extra' : ''}`;
  }

  // Shows these songs, -1 for one that is not known, under the head that sorts them.
  show(rows, sort) {
    this.rows = rows;
    this.heads.forEach((head, at) => {
      const { key } = this.columns[at];
      if (key === sort) head.setAttribute('aria-sort', 'ascending');
      else if (`-${key}` === sort) head.setAttribute('aria-sort', 'descending');
      else head.removeAttribute('aria-sort');
    });
    this.table.setAttribute('aria-rowcount', rows.length + 1);
    const hadFocus = this.node.contains(document.activeElement);
    this.active.row = Math.min(this.active.row, 0);
    this.body.replaceChildren();
    this.node.scrollTop = 0;
    this.draw();
    if (hadFocus) this.cell(this.active)?.focus({ preventScroll: true });
  }

  measure() {
    const rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
    this.rowHeight = parseFloat(getComputedStyle(this.node).getPropertyValue('--row')) * rem;
    const head = this.heads[0].parentNode.offsetHeight;
    const all = this.rows.length * this.rowHeight;
    this.room = Math.max(0, this.node.clientHeight - head);
    this.height.style.height = `${Math.min(tallest, all) + head}px`;
    this.window.style.height = `${this.node.clientHeight}px`;
    this.hidden = Math.max(0, all - this.room);  // pixels of rows above and below those in view
    this.travel = Math.max(0, this.node.scrollHeight - this.node.clientHeight);
  }

  // Draws the rows in view, and takes away the others.
  draw() {
    if (this.printing) return;
    this.measure();
    const top = this.travel > 0 ? Math.min(1, this.node.scrollTop / this.travel) * this.hidden : 0;
    const first = Math.floor(top / this.rowHeight);
    const last = Math.min(this.rows.length, Math.ceil((top + this.room) / this.rowHeight));
    this.drawRows(first, last);
    this.body.style.transform = `translateY(${first * this.rowHeight - top}px)`;
  }

  drawRows(first, last) {
    const hadFocus = this.body.contains(document.activeElement);
    while (this.body.firstChild && this.rowOf(this.body.firstChild) < first) this.body.firstChild.remove();
    while (this.body.lastChild && this.rowOf(this.body.lastChild) >= last) this.body.lastChild.remove();
    const from = this.body.firstChild ? this.rowOf(this.body.firstChild) : last;
    const to = this.body.lastChild ? this.rowOf(this.body.lastChild) + 1 : last;
    for (let row = from - 1; row >= first; row--) this.body.prepend(this.makeRow(row));
    for (let row = to; row < last; row++) this.body.append(this.makeRow(row));
    // The table keeps the keyboard when the row that had it is scrolled away.
    if (hadFocus && !this.body.contains(document.activeElement)) this.node.focus({ preventScroll: true });
    if (!hadFocus && document.activeElement !== this.node && this.active.row >= 0) {
      this.active.row = Math.min(Math.max(this.active.row, first), Math.max(first, last - 1));
    }
    this.mark();
  }

  rowOf(node) {
    return Number(node.getAttribute('aria-rowindex')) - 2;
  }

  makeRow(row) {
    const song = this.rows[row];
    return make('tr', { role: 'row', 'aria-rowindex': row + 2, class: row % 2 ? 'odd' : 'even' },
      ...this.columns.map((column, at) => make('td', {
        role: 'gridcell', 'aria-colindex': at + 1, tabindex: -1, class: this.classOf(column),
        'aria-label': column.spoken && song >= 0 ? column.spoken(songs[column.key][song]) : null,
      }, this.textOf(column, song, row))));
  }

  textOf(column, song, row) {
    if (column.key === 'order') return countText(row + 1);
    if (song < 0) return column.key === 'title' ? 'A song that the library does not hold' : '';
    return cellText(column, song);
  }

  cell({ row, column }) {
    if (row < 0) return this.buttons[column];
    const node = this.body.firstChild && this.body.children[row - this.rowOf(this.body.firstChild)];
    return node?.children[column] ?? null;
  }

  // Gives the one place in the order of Tab to the active cell; to a head when there is no row.
  mark() {
    for (const marked of this.table.querySelectorAll('[tabindex="0"]')) marked.setAttribute('tabindex', -1);
    (this.cell(this.active) ?? this.buttons[this.active.column]).setAttribute('tabindex', 0);
  }

  take(target) {
    const node = target.closest('td, th');
    if (!node) return;
    const column = Number(node.getAttribute('aria-colindex')) - 1;
    this.active = { row: node.localName === 'th' ? -1 : this.rowOf(node.parentNode), column };
    this.mark();
  }

  press(event) {
    const { row, column } = this.active;
    const page = Math.max(1, Math.floor(this.room / this.rowHeight) - 1);
    const last = this.rows.length - 1;
    const all = event.ctrlKey || event.metaKey;
    const steps = {
      ArrowDown: [row + 1, column],
      ArrowUp: [row - 1, column],
      ArrowLeft: [row, column - 1],
      ArrowRight: [row, column + 1],
      PageDown: [row + page, column],
      PageUp: [Math.max(0, row - page), column],
      Home: [all ? 0 : row, 0],
      End: [all ? last : row, this.columns.length - 1],
    };
    if (event.key === 'Enter' && row >= 0 && this.rows[row] >= 0) {
      this.opened(this.rows[row]);
    } else if (steps[event.key] && !event.altKey) {
      const [toRow, toColumn] = steps[event.key];
      this.move(Math.min(toRow, last), Math.min(Math.max(0, toColumn), this.columns.length - 1));
    } else {
      return;
    }
    event.preventDefault();
  }

  move(row, column) {
    this.active = { row: Math.max(-1, row), column };
    if (row >= 0) this.scrollTo(row);
    this.cell(this.active)?.focus({ preventScroll: row >= 0 });
    this.showColumn();
  }

  scrollTo(row) {
    const top = this.travel > 0 ? (this.node.scrollTop / this.travel) * this.hidden : 0;
    const above = row * this.rowHeight;
    const below = above + this.rowHeight - this.room;
    const wanted = Math.min(above, Math.max(top, below));
    if (wanted === top) return;
    this.node.scrollTop = this.hidden > 0 ? (wanted / this.hidden) * this.travel : 0;
    this.draw();
  }

  showColumn() {
    const cell = this.heads[this.active.column];
    const left = cell.offsetLeft;
    const right = left + cell.offsetWidth - this.node.clientWidth;
    this.node.scrollLeft = Math.min(left, Math.max(this.node.scrollLeft, right));
  }

  click(event) {
    const row = event.target.closest('tr');
    if (!row || !getSelection().isCollapsed) return;
    const song = this.rows[this.rowOf(row)];
    if (song >= 0) this.opened(song);
  }

  // On paper the rows stand one below the other, all of them.
  print(on) {
    this.printing = on;
    this.body.replaceChildren();
    if (!on) {
      this.more.textContent = '';
      this.draw();
      return;
    }
    this.body.style.transform = 'none';
    const last = Math.min(this.rows.length, mostPrinted);
    for (let row = 0; row < last; row++) this.body.append(this.makeRow(row));
    this.more.textContent = last < this.rows.length
      ? `The first ${countText(last)} of ${countText(this.rows.length)} songs. A search or a filter leaves fewer.` : '';
  }
}
