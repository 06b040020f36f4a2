/*
 * scenario.js - record what is done as a scenario, and show its lines as they come.
 */
import {emit, on, request} from './api.js';
import {by_id, make, set_attribute, set_text, show} from './dom.js';
import {tell, words_of} from './messages.js';

let board = null;
let lines = 0;
const parts = {};

const program = () => (board?.program || ['PROGRAM']).map((word) => (/^[\w@%+=:,./-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`)).join(' ');

async function carried_out(name, parameters) {
  try {
    return await request(name, parameters);
  } catch (error) {
    tell('bad', words_of(error));
    return null;
  }
}

export async function start_recording() {
  const file = parts.file.value.trim();
  const result = await carried_out('record.start', file ? {file} : {});
  if (!result) return false;
  lines = 0;
  parts.lines.replaceChildren();
  show(parts.done, false);
  tell('good', `Recording to ${result.file}`);
  await refresh();
  return true;
}

async function stop_recording() {
  const result = await carried_out('record.stop');
  if (!result) return;
  tell('good', `Recorded: ${result.file}, ${result.steps} steps, ${result.expectations} expectations`);
  set_text(parts.play, `vboard test ${result.file} -- ${program()}`);
  show(parts.done, true);
  await refresh();
}

/* The state of the board, for all who show whether something is recorded. */
async function refresh() {
  const now = await carried_out('board');
  if (now) emit('board', now);
}

export const toggle_recording = () => (board?.recording ? stop_recording() : start_recording());

function show_recording() {
  const file = board?.recording;
  set_attribute(by_id('record'), 'aria-pressed', Boolean(file));
  set_text(by_id('record-text'), file ? `Stop · ${lines} ${lines === 1 ? 'line' : 'lines'}` : 'Record');
  set_attribute(by_id('record'), 'title', file ? `Recording ${file}; stop (R)` : 'Record what is done as a scenario (R)');
  parts.file.disabled = Boolean(file);
  set_text(parts.switch, file ? 'Stop and write it' : 'Record');
  set_attribute(parts.switch, 'aria-pressed', Boolean(file));
  show(parts.about, !file && lines === 0);
}

export function scenario_panel() {
  parts.file = make('input', {type: 'text', value: 'scenario.yaml', 'aria-label': 'File of the scenario, in the board’s folder', spellcheck: 'false'});
  parts.switch = make('button', {class: 'button primary', type: 'submit', 'aria-pressed': 'false'}, 'Record');
  parts.lines = make('ol', {class: 'scenario-lines'});
  parts.play = make('code', {id: 'scenario-command'});
  parts.done = make('div', {class: 'done', hidden: true}, make('p', {}, 'Play it again:'), parts.play);
  parts.about = make('p', {class: 'about'},
    'While a scenario is recorded, what you press, pull and set is written down with its time. '
    + '“This must look like this”, below the screen, adds a picture of a part of the screen as an expectation. '
    + '“vboard test” plays it again.');
  const form = make('form', {class: 'joined'}, parts.file, parts.switch);
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    toggle_recording();
  });
  by_id('record').addEventListener('click', toggle_recording);
  on('board', (now) => {
    board = now;
    show_recording();
  });
  on('recorded', ({line}) => {
    lines += 1;
    const item = make('li', {}, make('code', {}, line.trimEnd()));
    parts.lines.append(item);
    item.scrollIntoView({block: 'nearest'});
    show_recording();
  });
  show_recording();
  return make('div', {class: 'scenario'}, form, parts.about, make('div', {class: 'scroll'}, parts.lines), parts.done);
}
