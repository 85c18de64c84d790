/// The document as sections: facts first, then tables with their charts, listings, and what lies deeper.
import {bars, chartOf} from './chart.js';
import {below, isEmpty, isLeaf, isListing, isText, textOf, withoutTold} from './data.js';
import {el} from './dom.js';
import {hrefOf, isPlace} from './links.js';
import {Table} from './table.js';
import {count, short, visible} from './text.js';
import {drawValue} from './value.js';

const kMany = 400;        // members or elements of one kind, before they are shown as a table
const kUnfolded = 5;      // levels that stand open

export class View {
  constructor({facts, root}) {
    this.facts = facts;
    this.root = root;
  }

  titleOf(name, fact) {
    return visible(short(this.facts[fact]?.title ?? name, 80));
  }

  /// Of an element that has a name, that name.
  partTitle({name, fact, child, siblings}) {
    const own = siblings.elements && child.members?.find(([member]) => member === 'name')?.[2];
    return own && isText(own) ? visible(short(own, 80)) : this.titleOf(name, fact);
  }

  meaning(fact) {
    const text = this.facts[fact]?.meaning;
    return text ? el('p', {class: 'meaning'}, text) : '';
  }

  /// Everything directly below a value. Gives elements.
  parts(value, pointer, depth) {
    const kinds = {leaves: [], tables: [], listings: [], sections: []};
    for (const [part, child, fact, name] of below(value)) {
      const at = {name, child, fact, pointer: `${pointer}/${part}`, depth: depth + 1, siblings: value};
      kinds[this.kindOf(child)].push(at);
    }
    const sections = kinds.sections.slice(0, kMany).map((part) => this.section(part));
    const left = kinds.sections.length - sections.length;
    return [
      kinds.leaves.length > kMany ? this.leafTable(kinds.leaves, pointer) : this.leaves(kinds.leaves),
      ...kinds.tables.slice(0, kMany).map((part) => this.table(part)),
      ...kinds.listings.slice(0, kMany).map((part) => this.listing(part)),
      ...sections,
      left > 0 ? el('p', {class: 'missing'}, `${count(left, 'more part')} not shown here; the search finds them.`) : null,
    ].filter((element) => element !== null);
  }

  kindOf(value) {
    if (isListing(value) || value.deep !== undefined) {
      return 'listings';
    }
    return isLeaf(value) || isEmpty(value) ? 'leaves' : value.columns ? 'tables' : 'sections';
  }

  heading(part, note) {
    const level = Math.min(part.depth + 1, 6);
    return el(`h${level}`, {}, el('a', {class: 'anchor', href: hrefOf(part.pointer)}, el('bdi', {}, this.partTitle(part))),
      note ? el('span', {class: 'count'}, ` ${note}`) : null);
  }

  section(part) {
    const {child, pointer, depth} = part;
    const isOpen = depth <= kUnfolded;
    const element = isOpen ? el('section', {}, this.heading(part)) : el('details', {class: 'section'},
      el('summary', {}, el('bdi', {}, this.partTitle(part))));
    const fill = () => element.append(...this.parts(child, pointer, depth));
    element.append(this.meaning(part.fact));
    if (isOpen) {
      fill();
    } else {
      element.addEventListener('toggle', fill, {once: true});
    }
    isPlace(pointer, () => element);
    return element;
  }

  leaves(parts) {
    return parts.length === 0 ? null : el('dl', {class: 'facts'}, ...parts.map((part) => this.leaf(part)));
  }

  leaf({name, child, fact, pointer, siblings}) {
    const known = this.facts[fact];
    const title = this.titleOf(name, fact);
    const element = el('div', {class: 'fact'},
      el('dt', {}, el('a', {class: 'anchor', href: hrefOf(pointer), title: short(name)}, el('bdi', {}, title))),
      el('dd', {}, ...drawValue(child, known, siblings)),
      known?.meaning ? el('dd', {class: 'meaning'}, known.meaning) : null);
    isPlace(pointer, () => element);
    return element;
  }

  /// Members that are too many for a list.
  leafTable(parts, pointer) {
    const table = {rows: parts.length, columns: [['Name', -1], ['Value', -1]],
      cells: [parts.map(({name}) => name), parts.map(({child}) => (isEmpty(child) ? '' : textOf(child)))]};
    const view = new Table({table, label: 'Members', columns: [{title: 'Name'}, {title: 'Value'}], href: (row) => hrefOf(parts[row].pointer)});
    const rowOf = new Map(parts.map(({name}, row) => [name, row]));
    isPlace(pointer, (name) => {
      if (!rowOf.has(name)) {
        return null;
      }
      view.reveal(rowOf.get(name));
      return view.element;
    });
    return view.element;
  }

  table(part) {
    const {child, pointer, fact} = part;
    const unitOf = ([, known]) => this.facts[known]?.unit;
    const shown = withoutTold(child);
    const columns = shown.columns.map((column) => ({title: column[0], unit: unitOf(column)}));
    const label = this.titleOf(part.name, fact);
    const view = new Table({table: shown, label, columns, href: (row) => hrefOf(`${pointer}/${row}`)});
    const chart = chartOf(child, this.facts[fact], unitOf);
    const element = el('section', {class: 'rows'}, this.heading(part, count(child.rows, 'row')),
      this.meaning(fact), chart ? bars(chart, label) : null, view.element);
    isPlace(pointer, (row) => {
      if (/^\d+$/.test(row ?? '') && Number(row) < child.rows) {
        view.reveal(Number(row));
      }
      return element;
    });
    return element;
  }

  listing(part) {
    const text = part.child.deep ?? part.child;
    const lines = text.split('\n').length - (text.endsWith('\n') ? 1 : 0);
    const summary = el('summary', {}, el('bdi', {}, this.titleOf(part.name, part.fact)), el('span', {class: 'count'}, ` ${count(lines, 'line')}`));
    const element = el('details', {class: 'listing'}, summary);
    const fill = () => {
      if (element.childElementCount === 1) {
        element.append(el('pre', {tabindex: '0'}, el('bdi', {}, visible(text))));
      }
    };
    element.addEventListener('toggle', fill);
    isPlace(part.pointer, () => element);
    return element;
  }
}
