/// Reading what the page carries; drawing it is the others' business.
///
/// {facts: [Fact], root: Value, changes: {table: Value, listings: [[way, pointer, lines]]} or null}
///
/// A Fact is {title, meaning, unit, chart}. A Value is a text, or an object with one of
///
///     members   [[name, number of its fact or -1, Value]...], the second of one name as "NAME#2"
///     columns   [[name, number of its fact or -1]...] with `cells`, a list of texts (null: none) for each
///               column, and `rows`, how many there are: an array of rows
///     elements  [Value...]: another array
///     scalar    a number, true, false or null
///     deep      what lies deeper than a page shows, as JSON

export async function readData(element) {
  const packed = atob(element.textContent);
  const bytes = new Uint8Array(packed.length);
  for (let at = 0; at < packed.length; ++at) {
    bytes[at] = packed.charCodeAt(at);
  }
  element.remove();
  const plain = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate'));
  return new Response(plain).json();
}

export const isText = (value) => typeof value === 'string';
export const isListing = (value) => isText(value) && (value.includes('\n') || value.length > 300);
export const isLeaf = (value) => isText(value) || value.scalar !== undefined;
export const isEmpty = (value) => (value.members ?? value.elements)?.length === 0;
export const textOf = (value) => (isText(value) ? value : value.scalar);

/// Without the column TARN_OBJECTIFY, which says the same in every row.
export function withoutTold({columns, cells, rows}) {
  const kept = [...columns.keys()].filter((column) => columns.length === 1 || columns[column][0].toUpperCase() !== 'TARN_OBJECTIFY');
  return {columns: kept.map((column) => columns[column]), cells: kept.map((column) => cells[column]), rows};
}

export function token(name) {
  return name.replaceAll('~', '~0').replaceAll('/', '~1');
}

/// The parts of a JSON Pointer.
export function tokens(pointer) {
  return pointer.split('/').slice(1).map((part) => part.replaceAll('~1', '/').replaceAll('~0', '~'));
}

/// What lies directly below a value: [token, Value, number of its fact, name].
export function* below(value) {
  if (value.members) {
    for (const [name, fact, member] of value.members) {
      yield [token(name), member, fact, name];
    }
  } else if (value.elements) {
    for (const [number, element] of value.elements.entries()) {
      yield [String(number), element, -1, String(number)];
    }
  }
}

/// Every text with the pointer to it: {pointer, name, text}. Deep first, without recursion.
export function* everything(root) {
  const waiting = [['', '', root]];
  while (waiting.length > 0) {
    const [pointer, name, value] = waiting.pop();
    if (isLeaf(value) || value.deep !== undefined) {
      yield {pointer, name, text: value.deep ?? textOf(value)};
    } else if (value.columns) {
      yield {pointer, name, text: ''};
      yield* cellsOf(pointer, value);
    } else {
      yield {pointer, name, text: ''};
      const next = [...below(value)].map(([part, child]) => [`${pointer}/${part}`, part, child]);
      waiting.push(...next.reverse());
    }
  }
}

function* cellsOf(pointer, table) {
  for (let row = 0; row < table.rows; ++row) {
    for (const [number, [name]] of table.columns.entries()) {
      const text = table.cells[number][row];
      if (text != null) {
        yield {pointer: `${pointer}/${row}`, name, text};
      }
    }
  }
}
