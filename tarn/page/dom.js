/// Elements made of texts: nothing here, or anywhere in this page, reads markup.

/// el('a', {href: '#x', class: 'y'}, 'text', child...): attributes that are null or false are left out.
export function el(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  setAttributes(element, attributes);
  element.append(...children.filter((child) => child != null));
  return element;
}

/// The same for SVG.
export function svg(name, attributes = {}, ...children) {
  const element = document.createElementNS('http://www.w3.org/2000/svg', name);
  setAttributes(element, attributes);
  element.append(...children);
  return element;
}

function setAttributes(element, attributes) {
  for (const [name, value] of Object.entries(attributes)) {
    if (value != null && value !== false) {
      element.setAttribute(name, value === true ? '' : value);
    }
  }
}

/// Runs `work` once things have come to rest for some milliseconds.
export function afterRest(milliseconds, work) {
  let timer = 0;
  return () => {
    clearTimeout(timer);
    timer = setTimeout(work, milliseconds);
  };
}
