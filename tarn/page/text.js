/// Foreign text as people may see it, and numbers with their units.

const kHidden = /[\u0000-\u0009\u000b-\u001f\u007f-\u009f\u00ad\u061c\u180e\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\ufff9-\ufffb]/g;
const kUnits = ['B', 'KiB', 'MiB', 'GiB', 'TiB', 'PiB', 'EiB'];
const kNumber = /^-?\d{1,15}(\.\d+)?$/;
const grouped = new Intl.NumberFormat('en', {maximumFractionDigits: 2});

function escapeOf(character) {
  const code = character.charCodeAt(0);
  const digits = code.toString(16);
  return code < 0x100 ? `\\x${digits.padStart(2, '0')}` : `\\u{${digits}}`;
}

/// Controls and what changes the direction of text show as escapes; a line feed stays where lines are wanted.
export function visible(text) {
  return text.replace(kHidden, (character) => (character === '\t' ? '    ' : escapeOf(character)));
}

/// On one line, and not longer than that.
export function short(text, length = 200) {
  const cut = text.length > length ? `${text.slice(0, length)}…` : text;
  return visible(cut).replaceAll('\n', ' ⏎ ');
}

export function isNumber(text) {
  return typeof text === 'string' && kNumber.test(text);
}

export function count(number, noun, nouns = `${noun}s`) {
  return `${grouped.format(number)} ${number === 1 ? noun : nouns}`;
}

/// 25276510208 is 23.5 GiB.
export function inBinaryUnits(bytes) {
  const power = bytes < 1024 ? 0 : Math.min(Math.floor(Math.log2(bytes) / 10), kUnits.length - 1);
  const size = bytes / 1024 ** power;
  return `${size.toFixed(power === 0 || size >= 100 ? 0 : 1)} ${kUnits[power]}`;
}

/// A number as its unit wants it, and what it is exactly where that is another text. Null for what is no number.
export function withUnit(text, unit) {
  if (!isNumber(text)) {
    return null;
  }
  const number = Number(text);
  if (unit === 'bytes') {
    return {shown: inBinaryUnits(number), exactly: number < 1024 ? null : `${grouped.format(number)} bytes`};
  }
  if (unit === 'count' || unit === 'number') {
    return {shown: grouped.format(number), exactly: null};
  }
  if (unit === 'pages') {
    return {shown: count(number, 'page'), exactly: null};
  }
  return unit === 'MHz' ? {shown: `${grouped.format(number)} MHz`, exactly: null} : null;
}
