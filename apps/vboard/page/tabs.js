/*
 * tabs.js - the tools at the right, one at a time. Arrow keys go from tab to tab.
 */
import {by_id, make, set_attribute} from './dom.js';

const tabs = [];

/* Add a tab. `shown` is called with true when it opens and with false when it closes. */
export function add_tab(id, title, panel, shown = () => {}) {
  const button = make('button', {id: `tab-${id}`, type: 'button', role: 'tab', 'aria-controls': `panel-${id}`,
    'aria-selected': 'false', tabindex: '-1', title: `${title} (${tabs.length + 1})`}, title);
  const holder = make('div', {id: `panel-${id}`, class: `tab-panel ${id}-panel`, role: 'tabpanel', 'aria-labelledby': `tab-${id}`, hidden: true}, panel);
  const index = tabs.length;
  button.addEventListener('click', () => open_tab(index));
  tabs.push({button, holder, shown});
  by_id('tabs').append(button);
  by_id('tab-panels').append(holder);
}

export function open_tab(index, focus = false) {
  if (!tabs[index]) return;
  tabs.forEach((tab, place) => {
    const open = place === index;
    set_attribute(tab.button, 'aria-selected', open);
    tab.button.tabIndex = open ? 0 : -1;
    if (open === !tab.holder.hidden) return;
    tab.holder.hidden = !open;
    tab.shown(open);
  });
  if (focus) tabs[index].button.focus();
  sessionStorage.setItem('tab', index);
}

export function init_tabs() {
  by_id('tabs').addEventListener('keydown', (event) => {
    const now = tabs.findIndex((tab) => tab.button === document.activeElement);
    const to = {ArrowRight: now + 1, ArrowLeft: now - 1, Home: 0, End: tabs.length - 1}[event.key];
    if (to === undefined || now < 0) return;
    event.preventDefault();
    open_tab((to + tabs.length) % tabs.length, true);
  });
  open_tab(Math.min(Number(sessionStorage.getItem('tab') || 0), tabs.length - 1));
}
