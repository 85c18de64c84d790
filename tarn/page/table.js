/// A table that sorts and filters, and keeps only the rows in the document that can be seen.
import {afterRest, el} from './dom.js';
import {Rows} from './rows.js';
import {count, inBinaryUnits, isNumber, short, visible} from './text.js';

const kAhead = 10;        // rows beyond what can be seen
const kPrinted = 500;     // rows on paper
const kFiltered = 8;      // tables of more rows can be filtered
const kSampled = 1000;    // rows that tell how wide a column is
const kWidest = 34;       // the figure 0 so many times

/// About how wide a text is, in the figure 0: most letters are narrower, capitals wider.
const figures = (text) => 0.88 * text.length + 0.3 * (text.match(/[A-Z]/g)?.length ?? 0);

function wide(element, width) {
  element.style.width = `${width}ch`;
  return element;
}

/// Columns of a table have {title, unit, widest}; `href(row)` is where a row is to be found.
export class Table {
  constructor({table, label, columns, href}) {
    this.rows = new Rows(table);
    this.table = table;
    this.label = label;
    this.columns = columns;
    this.href = href;
    this.body = el('tbody');
    this.above = el('tbody', {'aria-hidden': 'true'}, el('tr', {}, el('td', {colspan: columns.length})));
    this.below = this.above.cloneNode(true);
    this.count = el('span', {class: 'count', 'aria-live': 'polite'});
    this.scroller = el('div', {class: 'scroller', tabindex: '0', role: 'region', 'aria-label': `${label}, rows`}, this.grid());
    this.element = el('div', {class: 'table'}, this.tools(), this.scroller);
    this.scroller.addEventListener('scroll', () => this.draw(), {passive: true});
    new ResizeObserver(() => this.draw()).observe(this.scroller);
    addEventListener('beforeprint', () => this.drawRows(0, Math.min(kPrinted, this.rows.order.length)));
    addEventListener('afterprint', () => this.redraw());
    this.redraw();
  }

  tools() {
    const tools = el('div', {class: 'tools'});
    if (this.table.rows > kFiltered) {
      const input = el('input', {type: 'search', autocomplete: 'off', spellcheck: 'false'});
      input.addEventListener('input', afterRest(80, () => {
        this.rows.filter(input.value);
        this.scroller.scrollTop = 0;
        this.redraw();
      }));
      tools.append(el('label', {}, 'Filter ', el('span', {class: 'unseen'}, this.label), input));
    }
    tools.append(this.count);
    return tools;
  }

  grid() {
    this.headers = this.columns.map(({title}, column) => {
      const button = el('button', {type: 'button'}, visible(short(title, 60)));
      button.addEventListener('click', () => {
        this.rows.sort(column);
        this.redraw();
      });
      return el('th', {scope: 'col', class: this.rows.isNumeric(column) ? 'number' : null}, button);
    });
    this.numeric = this.columns.map((_, column) => this.rows.isNumeric(column));
    this.linked = Math.max(0, this.numeric.indexOf(false));  // what names a row is rarely a number
    const widths = this.columns.map((told, column) => this.width(told, column));
    const grid = el('table', {'aria-rowcount': this.table.rows + 1},
      el('caption', {class: 'unseen'}, this.label), el('colgroup', {}, ...widths.map((width) => wide(el('col'), width))),
      el('thead', {}, el('tr', {'aria-rowindex': '1'}, ...this.headers)), this.above, this.body, this.below);
    return wide(grid, widths.reduce((sum, width) => sum + width, 0));
  }

  width({title, widest = kWidest}, column) {
    const texts = this.table.cells[column].slice(0, kSampled).map((text) => figures(text?.slice(0, widest) ?? ''));
    return 3.5 + Math.min(widest, Math.max(1.1 * figures(title) + 2, ...texts));
  }

  /// After the rows or their order have changed.
  redraw() {
    const {order, sorted} = this.rows;
    this.first = this.last = -1;
    this.count.textContent = order.length === this.table.rows ? count(order.length, 'row')
      : `${order.length} of ${count(this.table.rows, 'row')}`;
    this.headers.forEach((header, column) => {
      const way = sorted?.column !== column ? 'none' : sorted.descending ? 'descending' : 'ascending';
      header.setAttribute('aria-sort', way);
    });
    this.draw();
  }

  rowHeight() {
    return this.body.firstElementChild?.offsetHeight || 32;
  }

  draw() {
    const height = this.rowHeight();
    const first = Math.max(0, Math.floor(this.scroller.scrollTop / height) - kAhead);
    const shown = Math.ceil((this.scroller.clientHeight || 320) / height) + 2 * kAhead;
    this.drawRows(first, Math.min(first + shown, this.rows.order.length));
  }

  drawRows(first, last) {
    if (first === this.first && last === this.last) {
      return;
    }
    [this.first, this.last] = [first, last];
    const rows = this.rows.order.slice(first, last).map((row, at) => this.drawRow(row, first + at));
    this.body.replaceChildren(...rows);
    const height = this.rowHeight();
    this.above.firstElementChild.style.height = `${first * height}px`;
    this.below.firstElementChild.style.height = `${(this.rows.order.length - last) * height}px`;
    this.above.hidden = first === 0;
    this.below.hidden = last === this.rows.order.length;
  }

  drawRow(row, at) {
    const cells = this.columns.map(({unit}, column) => this.drawCell(this.table.cells[column][row], unit, column, row));
    return el('tr', {'aria-rowindex': at + 2, class: row === this.marked ? 'marked' : null}, ...cells);
  }

  drawCell(text, unit, column, row) {
    const missing = !text || text === 'NULL' || text === 'null';
    const size = unit === 'bytes' && isNumber(text) ? inBinaryUnits(Number(text)) : null;
    const isLink = column === this.linked && this.href;
    const shown = el('bdi', {}, size ?? short(text || (isLink ? '(empty)' : '')));
    const kind = `${this.numeric[column] ? 'number' : ''}${missing ? ' missing' : ''}`.trim();
    return el('td', {class: kind || null, title: (size && text) ?? (text?.length > 30 ? short(text, 1000) : null)},
      isLink ? el('a', {href: this.href(row)}, shown) : shown);
  }

  /// Brings a row into view, and marks it.
  reveal(row) {
    let at = this.rows.order.indexOf(row);
    if (at < 0) {
      this.rows.filter('');
      at = this.rows.order.indexOf(row);
    }
    this.marked = row;
    this.redraw();
    this.scroller.scrollTop = (at - 2) * this.rowHeight();
    this.first = -1;
    this.draw();
  }
}
