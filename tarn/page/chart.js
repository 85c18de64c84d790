/// Charts of rows and of shares, as SVG: what they show stands beside them in words.
import {el, svg} from './dom.js';
import {inBinaryUnits, isNumber, short} from './text.js';

const kBars = 12;       // the largest ones
const kBarHeight = 24;
const kLabels = 150;
const kWidth = 600;
const kNumbers = 80;
const kLetters = 22;

/// What a table can be drawn as: {labels, values, unit}, or null. Its fact tells, or a column TARN_OBJECTIFY, which
/// names the column of the labels; the numbers stand in COUNT then.
export function chartOf(table, fact, unitOf) {
  const number = (name) => table.columns.findIndex(([column]) => column.toUpperCase() === name?.toUpperCase());
  const told = number('TARN_OBJECTIFY');
  const [kind, label, value] = fact?.chart ?? [];
  const names = kind === 'bars' ? [label, value] : [told >= 0 ? table.cells[told][0] : null, 'COUNT'];
  const [labels, values] = names.map(number);
  if (labels < 0 || values < 0 || table.rows < 2 || !table.cells[values].every(isNumber)) {
    return null;
  }
  return {labels: table.cells[labels], values: table.cells[values].map(Number), unit: unitOf(table.columns[values]), name: names[1]};
}

/// Horizontal bars, the longest first.
export function bars({labels, values, unit, name}, title) {
  const order = [...values.keys()].sort((one, other) => values[other] - values[one]);
  const shown = order.slice(0, kBars);
  const most = Math.max(...shown.map((row) => values[row]), 1e-9);
  const room = kWidth - kLabels - kNumbers;
  const drawn = shown.map((row, at) => {
    const y = at * kBarHeight;
    const length = Math.max(values[row] <= 0 ? 0 : 2, (room * values[row]) / most);
    return svg('g', {},
      svg('text', {x: kLabels - 8, y: y + 16, 'text-anchor': 'end'}, short(labels[row] || '(empty)', kLetters)),
      svg('rect', {x: kLabels, y: y + 4, width: length, height: kBarHeight - 8, rx: 2}),
      svg('text', {x: kLabels + length + 6, y: y + 16}, numberOf(values[row], unit)));
  });
  const height = shown.length * kBarHeight;
  const label = `Bar chart: ${short(name)} of ${title}, the largest is ${short(labels[order[0]])} with ${values[order[0]]}`;
  const more = order.length - shown.length;
  return el('figure', {class: 'chart'},
    svg('svg', {viewBox: `0 0 ${kWidth} ${height}`, role: 'img', 'aria-label': label}, ...drawn),
    more > 0 ? el('figcaption', {}, `and ${more} smaller`) : null);
}

function numberOf(value, unit) {
  return unit === 'bytes' ? inBinaryUnits(value) : value.toLocaleString('en');
}

/// A bar for a number that is a part of another; null when it cannot be one.
export function share(part, whole) {
  if (!isNumber(part) || !isNumber(whole) || Number(whole) <= 0 || Number(part) > Number(whole) || Number(part) < 0) {
    return null;
  }
  const percent = (100 * Number(part)) / Number(whole);
  const text = `${percent.toFixed(percent < 10 ? 1 : 0)} %`;
  return el('span', {class: 'share'},
    svg('svg', {viewBox: '0 0 100 10', role: 'img', 'aria-label': `${text} of ${numberOf(Number(whole), '')}`, preserveAspectRatio: 'none'},
      svg('rect', {class: 'whole', width: 100, height: 10, rx: 2}), svg('rect', {width: percent, height: 10, rx: 2})),
    text);
}
