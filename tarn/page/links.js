/// Every place has a link: the page's address with "#" and the JSON Pointer of the place. What a link leads to may not
/// have been drawn yet, or be a row that is out of sight.
import {token, tokens} from './data.js';

const shown = new Map();  // pointer -> what to do to bring it to light; gives the element

export function hrefOf(pointer) {
  return `#${encodeURI(pointer).replaceAll('#', '%23')}`;
}

export function isPlace(pointer, reveal) {
  shown.set(pointer, reveal);
}

/// The element of a pointer, or of the nearest place above it.
function bringToLight(pointer) {
  const parts = tokens(pointer);
  let element = null;
  for (let depth = 0; depth <= parts.length; ++depth) {
    const above = parts.slice(0, depth).map((part) => `/${token(part)}`).join('');
    element = shown.get(above)?.(parts[depth]) ?? element;
  }
  return element;
}

function open(element) {
  for (let at = element; at; at = at.parentElement) {
    if (at.localName === 'details') {
      at.open = true;
    }
  }
}

export function follow() {
  let pointer = null;
  try {
    pointer = decodeURIComponent(location.hash.slice(1));
  } catch {
    return;  // not ours
  }
  const element = pointer.startsWith('/') ? bringToLight(pointer) : null;
  if (!element) {
    return;
  }
  open(element);
  document.querySelector('.target')?.classList.remove('target');
  element.classList.add('target');
  element.scrollIntoView({block: 'center'});
  (element.querySelector('a, [tabindex], summary') ?? element).focus({preventScroll: true});
}
