/// Search over everything: names, titles are not needed, texts and cells. The first hits, and how many there are.
import {everything} from './data.js';
import {afterRest, el} from './dom.js';
import {hrefOf} from './links.js';
import {count, short, visible} from './text.js';

const kShown = 100;
const kCounted = 10000;
const kAround = 60;

function excerpt(text, at, length) {
  const from = Math.max(0, at - kAround);
  const part = (begin, end) => short(text.slice(begin, end), 2 * kAround);
  return el('span', {class: 'excerpt'}, el('bdi', {}, from > 0 ? '…' : '', part(from, at), el('mark', {}, part(at, at + length)),
    part(at + length, at + length + kAround), at + length + kAround < text.length ? '…' : ''));
}

function hitOf(place, wanted) {
  const inText = place.text.toLowerCase().indexOf(wanted);
  return inText >= 0 || place.name.toLowerCase().includes(wanted) ? {...place, inText} : null;
}

export function search(root, wanted) {
  const hits = [];
  for (const place of everything(root)) {
    const hit = hitOf(place, wanted);
    if (hit && hits.push(hit) === kCounted) {
      break;
    }
  }
  return hits;
}

function item(hit, length) {
  const column = hit.pointer.endsWith(`/${hit.name}`) ? '' : ` ${short(hit.name, 40)}`;
  return el('li', {}, el('a', {href: hrefOf(hit.pointer)}, el('bdi', {}, visible(short(hit.pointer, 120)))), column, ' ',
    hit.inText >= 0 && hit.text ? excerpt(hit.text, hit.inText, length) : null);
}

export function installSearch(input, found, root) {
  const show = () => {
    const wanted = input.value.trim().toLowerCase();
    found.hidden = wanted === '';
    if (wanted === '') {
      return;
    }
    const hits = search(root, wanted);
    const more = hits.length === kCounted ? `more than ${kCounted - 1}` : hits.length;
    const note = hits.length > kShown ? `${more} places, the first ${kShown}:` : `${count(hits.length, 'place')}${hits.length ? ':' : ''}`;
    found.replaceChildren(el('p', {role: 'status'}, note), el('ol', {}, ...hits.slice(0, kShown).map((hit) => item(hit, wanted.length))));
  };
  input.addEventListener('input', afterRest(150, show));
  input.form.addEventListener('submit', (event) => {
    event.preventDefault();
    show();
    found.querySelector('a')?.focus();
  });
  addEventListener('keydown', (event) => {
    if (event.key === '/' && !(event.target instanceof HTMLInputElement)) {
      event.preventDefault();
      input.focus();
    }
  });
}
