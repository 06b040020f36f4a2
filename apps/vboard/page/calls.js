/*
 * calls.js - the newest platform calls: filtered, unfolded, held.
 *
 * They are asked for while the tab is open, by what is searched; the board collects them only meanwhile.
 * Unfolding one holds the list, so that it does not run away.
 */
import {on, request} from './api.js';
import {make, set_attribute, set_text, show} from './dom.js';
import {count, duration_text} from './numbers.js';
import {tell, words_of} from './messages.js';

const kEvery = 500; // ms
const kMost = 300;  // calls in the list

let visible = false;
let linked = false;
let held = false;
let after = 0;
let asking = false;
let generation = 0; // of the filter: answers to an earlier one are thrown away
const parts = {};

function filter() {
  const wanted = {};
  const name = parts.name.value.trim();
  const channel = parts.channel.value.trim();
  if (name) wanted.name = name;
  if (channel !== '' && Number(channel) >= 0 && Number(channel) <= 63) wanted.channel = Number(channel);
  if (parts.failed.checked) wanted.failed = true;
  return wanted;
}

async function ask() {
  if (!visible || !linked || held || asking || document.visibilityState !== 'visible') return;
  asking = true;
  const mine = generation;
  try {
    const answer = await request('calls', {...filter(), after, limit: 200});
    if (mine === generation && !held) {
      after = answer.next;
      add(answer.calls);
    }
  } catch { /* the page tells elsewhere when the board is away */ }
  asking = false;
  if (mine !== generation) ask();
}

function add(calls) {
  for (const call of calls) parts.list.prepend(row_of(call));
  while (parts.list.children.length > kMost) parts.list.lastElementChild.remove();
  tell_counts();
}

function tell_counts() {
  const shown = parts.list.children.length;
  show(parts.empty, shown === 0);
  set_text(parts.counts, `${count(shown)} shown, at most the newest ${kMost}`);
}

function row_of(call) {
  const details = make('div', {class: 'call-fields', hidden: true});
  const button = make('button', {class: 'call', type: 'button', 'aria-expanded': 'false'},
    make('span', {class: 'call-time'}, (call.time_us / 1e6).toFixed(6)),
    make('span', {class: 'call-name', title: call.name}, call.name),
    make('span', {class: 'call-channel'}, call.channel ?? ''),
    make('span', {class: 'call-result'}, `= ${value_text(call.result)}`),
    make('span', {class: 'call-duration'}, duration_text(call.duration_us)));
  button.addEventListener('click', () => {
    const open = details.hidden;
    if (open && !details.firstChild) unfold(details, call);
    details.hidden = !open;
    set_attribute(button, 'aria-expanded', open);
    if (open) hold(true);
  });
  return make('li', {'data-failed': call.failed ? 'true' : 'false'}, button, details);
}

/* A value as it stands in a trace: "-" is what a failing call was to fill. */
function value_text(value) {
  if (value === null || value === undefined) return '–';
  if (typeof value !== 'object') return String(value);
  return `{${Object.entries(value).map(([name, inner]) => `${name}=${value_text(inner)}`).join(' ')}}`;
}

function unfold(details, call) {
  const list = make('dl');
  const line = (name, value, style) => list.append(make('dt', {class: style}, name), make('dd', {class: style}, value));
  for (const {name, value} of call.arguments || []) {
    const fields = value && typeof value === 'object' ? Object.entries(value) : [];
    line(name, fields.length ? '' : value_text(value));
    for (const [field, inner] of fields) line(field, value_text(inner), 'inner');
  }
  line('result', value_text(call.result));
  line('ended at', `${(call.time_us / 1e6).toFixed(6)} s of the board's clock`);
  line('took', duration_text(call.duration_us));
  line('thread', value_text(call.thread));
  line('number', value_text(call.number));
  details.append(list, make('code', {}, call.text));
}

function hold(to) {
  held = to;
  set_attribute(parts.hold, 'aria-pressed', held);
  set_text(parts.hold, held ? 'Go on' : 'Pause');
  parts.panel.classList.toggle('held', held);
  ask();
}

function search_anew() {
  generation += 1;
  after = 0;
  parts.list.replaceChildren();
  tell_counts();
  if (held) hold(false);
  else ask();
}

let trace = null;

async function switch_trace() {
  try {
    if (trace) {
      await request('trace.stop');
      tell('good', `The trace is complete: ${trace}`);
    } else {
      tell('good', `Every call is written to ${(await request('trace.start', {file: 'trace.txt'})).file}`);
    }
  } catch (error) {
    tell('bad', words_of(error));
  }
}

export function show_calls(to) {
  visible = to;
  ask();
}

export const hold_calls = () => hold(!held);

export function calls_panel() {
  parts.name = make('input', {type: 'search', placeholder: 'Name', 'aria-label': 'Part of the name', spellcheck: 'false', autocomplete: 'off', oninput: search_anew});
  parts.channel = make('input', {type: 'number', min: 0, max: 63, placeholder: 'Channel', 'aria-label': 'Channel', oninput: search_anew});
  parts.failed = make('input', {type: 'checkbox', id: 'calls-failed', onchange: search_anew});
  parts.hold = make('button', {class: 'button', type: 'button', 'aria-pressed': 'false', onclick: () => hold(!held)}, 'Pause');
  parts.trace = make('button', {class: 'button', type: 'button', 'aria-pressed': 'false', onclick: switch_trace}, 'Trace to a file');
  parts.list = make('ol', {class: 'calls', id: 'calls'});
  parts.empty = make('p', {class: 'empty'}, 'No such call so far.');
  parts.counts = make('p', {class: 'small figures'});
  parts.panel = make('div', {class: 'calls-panel'},
    make('div', {class: 'filters'}, parts.name, parts.channel,
      make('label', {class: 'check', for: 'calls-failed'}, parts.failed, 'Failed'), parts.hold, parts.trace),
    make('div', {class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Newest calls'}, parts.list, parts.empty),
    parts.counts);
  on('link', ({up}) => {
    linked = up;
    if (up) after = 0;
  });
  on('board', (board) => {
    if (board.power === 'off' || board.exit) after = 0;
  });
  on('state', (state) => {
    trace = state.trace;
    set_attribute(parts.trace, 'aria-pressed', Boolean(trace));
    set_text(parts.trace, trace ? 'End the trace' : 'Trace to a file');
  });
  setInterval(ask, kEvery);
  tell_counts();
  return parts.panel;
}
