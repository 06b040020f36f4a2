/*
 * marking.js - "this must look like this": a region of the screen is marked, and what it shows becomes
 * an expectation of the scenario that is being recorded. Marked with the mouse, or by its numbers.
 */
import {on, request} from './api.js';
import {by_id, make, set_attribute, set_text, show} from './dom.js';
import {tell, words_of} from './messages.js';
import {output_position, output_size} from './screen.js';
import {start_recording} from './scenario.js';

export const marking = {on: false};

const kNames = ['x', 'y', 'width', 'height'];
const fields = {};
let recording = null;

function region() {
  const {width, height} = output_size();
  const value = (name) => Math.round(Number(fields[name].value) || 0);
  const x = Math.min(Math.max(value('x'), 0), width - 2);
  const y = Math.min(Math.max(value('y'), 0), height - 2);
  return [x, y, Math.min(Math.max(value('width'), 2), width - x), Math.min(Math.max(value('height'), 2), height - y)];
}

function set_region(values) {
  kNames.forEach((name, index) => { fields[name].value = values[index]; });
  draw_region();
}

function draw_region() {
  const {width, height} = output_size();
  const [x, y, w, h] = region();
  const box = by_id('mark').style;
  box.left = `${100 * x / width}%`;
  box.top = `${100 * y / height}%`;
  box.width = `${100 * w / width}%`;
  box.height = `${100 * h / height}%`;
}

function turn(to) {
  marking.on = to;
  const start = by_id('mark-start');
  set_attribute(start, 'aria-pressed', to);
  by_id('screen-frame').classList.toggle('marking', to);
  show(by_id('mark'), to);
  show(by_id('mark-fields'), to);
  set_text(start, to ? 'Cancel' : 'This must look like this');
  tell_hint();
  if (to) {
    const {width, height} = output_size();
    set_region([width / 4, height / 4, width / 2, height / 2]);
    fields.x.focus();
  }
}

function tell_hint() {
  let hint = 'Marks a part of the screen as expected.';
  if (marking.on) hint = '';
  else if (recording) hint = `Adds what a part of the screen shows to ${recording}.`;
  set_text(by_id('mark-hint'), hint);
}

async function add(event) {
  event.preventDefault();
  if (!marking.on) return;
  if (!recording && !await start_recording()) return;
  try {
    const {picture} = await request('record.expect', {region: region(), difference: Number(fields.difference.value)});
    tell('good', `Expected from now on: ${picture}`);
    turn(false);
    by_id('mark-start').focus();
  } catch (error) {
    tell('bad', words_of(error));
  }
}

function mark_with_the_mouse() {
  const screen = by_id('screen');
  let from = null;
  screen.addEventListener('pointerdown', (event) => {
    if (!marking.on || event.button !== 0) return;
    screen.setPointerCapture(event.pointerId);
    from = output_position(event);
  });
  screen.addEventListener('pointermove', (event) => {
    if (!marking.on || !from) return;
    const to = output_position(event);
    set_region([Math.min(from.x, to.x), Math.min(from.y, to.y), Math.abs(to.x - from.x), Math.abs(to.y - from.y)]);
  });
  screen.addEventListener('pointerup', () => { from = null; });
}

export function init_marking() {
  const number = (name, label, attributes) => {
    fields[name] = make('input', {type: 'number', min: 0, required: true, ...attributes, oninput: draw_region});
    return make('label', {}, label, fields[name]);
  };
  by_id('mark-fields').append(
    number('x', 'x'), number('y', 'y'), number('width', 'w', {min: 2}), number('height', 'h', {min: 2}),
    number('difference', '±%', {max: 100, step: 'any', value: 2, title: 'Difference that is allowed, percent'}),
    make('button', {class: 'button primary', type: 'submit'}, 'Expect this'));
  by_id('mark-form').addEventListener('submit', add);
  by_id('mark-start').addEventListener('click', () => turn(!marking.on));
  document.addEventListener('keydown', (event) => {
    if (event.key !== 'Escape' || !marking.on) return;
    turn(false);
    by_id('mark-start').focus();
  });
  mark_with_the_mouse();
  on('board', (board) => {
    recording = board.recording;
    tell_hint();
  });
  tell_hint();
}

export const toggle_marking = () => turn(!marking.on);
