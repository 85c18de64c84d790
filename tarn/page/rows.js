/// Which rows of a table are shown, and in which order.
import {isNumber} from './text.js';

const compareTexts = new Intl.Collator('en', {numeric: true}).compare;
const kCollated = 5000;  // more texts than these are compared by their characters: fifty times as fast

export class Rows {
  constructor(table) {
    this.table = table;
    this.order = Array.from({length: table.rows}, (_, row) => row);
    this.sorted = null;  // {column, descending}
    this.wanted = '';
  }

  /// Whether a column holds numbers only, as far as it holds anything.
  isNumeric(column) {
    const cells = this.table.cells[column].filter((text) => text != null && text !== '' && text !== 'NULL');
    return cells.length > 0 && cells.every(isNumber);
  }

  sort(column) {
    const descending = this.sorted?.column === column && !this.sorted.descending;
    this.sorted = {column, descending};
    this.arrange();
  }

  filter(text) {
    this.wanted = text.toLowerCase();
    this.arrange();
  }

  arrange() {
    const {cells, rows} = this.table;
    this.order = [];
    for (let row = 0; row < rows; ++row) {
      if (this.wanted === '' || cells.some((column) => column[row]?.toLowerCase().includes(this.wanted))) {
        this.order.push(row);
      }
    }
    if (this.sorted) {
      const {column, descending} = this.sorted;
      const compare = this.comparison(cells[column], this.isNumeric(column));
      this.order.sort((one, other) => (descending ? -1 : 1) * compare(one, other) || one - other);
    }
  }

  /// Rows without a number come behind those with one.
  comparison(cells, numeric) {
    if (numeric) {
      const numbers = cells.map((text) => (isNumber(text) ? Number(text) : Infinity));
      return (one, other) => (numbers[one] === numbers[other] ? 0 : numbers[one] - numbers[other]);
    }
    const texts = cells.map((text) => text ?? '');
    if (texts.length <= kCollated) {
      return (one, other) => compareTexts(texts[one], texts[other]);
    }
    return (one, other) => (texts[one] < texts[other] ? -1 : texts[one] > texts[other] ? 1 : 0);
  }
}
