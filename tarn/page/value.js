/// A single value: with its unit, as a part of another one, or as what stands for none.
import {share} from './chart.js';
import {isEmpty, textOf} from './data.js';
import {el} from './dom.js';
import {short, withUnit} from './text.js';

const kSilent = {'null': 'null', 'NULL': 'NULL', '': '(empty)'};

/// `fact` is what is known of the member, `siblings` the object that it stands in. Gives elements.
export function drawValue(value, fact, siblings) {
  const text = isEmpty(value) ? null : textOf(value);
  if (text === null || Object.hasOwn(kSilent, text)) {
    return [el('span', {class: 'missing'}, kSilent[text] ?? '(none)')];
  }
  const sized = withUnit(text, fact?.unit);
  const elements = [el('bdi', {}, sized?.shown ?? short(text, 300))];
  if (sized?.exactly) {
    elements.push(el('span', {class: 'exactly'}, ` ${sized.exactly}`));
  }
  const drawn = drawShare(text, fact?.chart ?? [], siblings);
  return drawn ? [...elements, ' ', drawn] : elements;
}

function drawShare(text, [kind, place], siblings) {
  const whole = kind === 'share' && siblings.members?.find(([name]) => place.endsWith(`/${name}`))?.[2];
  return whole ? share(text, whole) : null;
}
