/*
 * theme.js - dark or light: as the system has it, until the switch is used.
 */
import {by_id} from './dom.js';
import {icon} from './icons.js';

const prefers_dark = matchMedia('(prefers-color-scheme: dark)');

function apply() {
  const chosen = localStorage.getItem('theme');
  document.documentElement.dataset.theme = chosen || (prefers_dark.matches ? 'dark' : 'light');
}

export function switch_theme() {
  const next = document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark';
  // What the system prefers anyway need not be kept: the page then follows it again.
  if (next === (prefers_dark.matches ? 'dark' : 'light')) localStorage.removeItem('theme');
  else localStorage.setItem('theme', next);
  apply();
}

export function init_theme() {
  apply();
  prefers_dark.addEventListener('change', apply);
  by_id('theme').append(icon('theme'));
  by_id('theme').addEventListener('click', switch_theme);
}
