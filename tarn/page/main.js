/// Puts the page together: the summary stands there already, the rest is drawn from the data.
import {showChanges} from './changes.js';
import {readData} from './data.js';
import {el} from './dom.js';
import {follow, hrefOf} from './links.js';
import {installSearch} from './search.js';
import {visible} from './text.js';
import {View} from './view.js';

const byId = (id) => document.getElementById(id);

function installNavigation(view, root) {
  const links = (root.members ?? []).filter(([, , value]) => typeof value === 'object').slice(0, 30)
    .map(([name, fact]) => el('a', {href: hrefOf(`/${name}`)}, visible(view.titleOf(name, fact))));
  document.querySelector('#bar nav').append(...links);
}

async function main() {
  const data = await readData(byId('data'));
  const view = new View(data);
  if (data.changes) {
    showChanges(byId('changes'), data.changes);
  }
  const whole = data.root.members || data.root.elements ? data.root : {elements: [data.root]};
  byId('document').append(...view.parts(whole, '', 0));
  installNavigation(view, data.root);
  installSearch(byId('search'), byId('found'), data.root);
  byId('bar').hidden = false;
  addEventListener('hashchange', follow);
  follow();
  performance.mark('shown');
  document.documentElement.dataset.ready = 'yes';
}

main().catch((error) => {
  byId('trouble').textContent = `This page cannot be shown in full: ${error.message}. It needs a browser of 2023 or later.`;
  byId('trouble').hidden = false;
});
