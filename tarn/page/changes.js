/// What changed, on top of a page of two documents.
import {el} from './dom.js';
import {hrefOf} from './links.js';
import {Table} from './table.js';
import {short, visible} from './text.js';

const kSigns = {'+': 'come', '-': 'gone', '@': 'hunk'};

function linesOf(text) {
  return text.split('\n').map((line) => el('span', {class: kSigns[line[0]] ?? null}, visible(line), '\n'));
}

function listing([way, pointer, lines]) {
  return el('details', {class: 'listing', open: lines.length < 2000}, el('summary', {}, el('bdi', {}, visible(short(way)))),
    el('pre', {tabindex: '0'}, ...linesOf(lines)), el('p', {}, el('a', {href: hrefOf(pointer)}, 'In the document')));
}

export function showChanges(section, changes) {
  const {table, listings, pointers} = changes;
  if (table.rows > 0) {
    const columns = [{title: 'Change'}, {title: 'Where', widest: 56}, {title: 'Before', widest: 26}, {title: 'After', widest: 26}];
    const href = (row) => hrefOf(pointers[row]);
    section.append(new Table({table, label: 'Changes', columns, href}).element);
  }
  section.append(...listings.map(listing));
}
