/*
 * clock.js - the board's clock: it runs, or it is taken and moves by steps; and one picture on.
 *
 * Between two states the time that is shown runs on by this computer's clock.
 */
import {on} from './api.js';
import {act, tell} from './messages.js';
import {by_id, make, set_attribute, set_text} from './dom.js';
import {clock_text, microseconds} from './numbers.js';

let at = null; // {us, wall_us, taken, since}
let step_pacing = false;
const controls = {};

function show_time() {
  if (!at) return;
  const us = at.us + (at.taken ? 0 : (performance.now() - at.since) * 1000);
  set_text(by_id('clock-time'), clock_text(us));
}

function show_taken() {
  set_text(by_id('clock-state'), at ? (at.taken ? 'taken: it stands' : 'runs') : 'off');
  set_attribute(by_id('clock-state'), 'data-tone', at ? (at.taken ? 'warn' : 'good') : 'none');
  set_attribute(controls.run, 'aria-pressed', Boolean(at && !at.taken));
  set_attribute(controls.take, 'aria-pressed', Boolean(at?.taken));
  controls.step.disabled = !at?.taken;
}

async function step(event) {
  event.preventDefault();
  const by = microseconds(controls.by.value);
  if (!Number.isSafeInteger(by) || by <= 0) {
    tell('bad', `"${controls.by.value}" is no duration: 40ms, 2s, 1m`);
    controls.by.focus();
    return;
  }
  const result = await act('clock.step', {by});
  if (result && at) at = {...at, us: result.us, since: performance.now()};
  show_time();
}

async function set_pacing() {
  const mode = step_pacing ? 'realtime' : 'step';
  if (await act('pacing', {mode})) step_pacing = !step_pacing;
  show_pacing();
}

function show_pacing() {
  set_attribute(controls.pacing, 'aria-pressed', step_pacing);
  controls.picture.disabled = !step_pacing;
}

export const take_or_release = () => act(at?.taken ? 'clock.release' : 'clock.take');
export const step_once = () => controls.step.form.requestSubmit();
export const picture_on = () => act('clock.picture', {});

export function init_clock() {
  controls.run = make('button', {class: 'button', type: 'button', onclick: () => act('clock.release')}, 'Run');
  controls.take = make('button', {class: 'button', type: 'button', onclick: () => act('clock.take')}, 'Take');
  controls.by = make('input', {type: 'text', value: '40ms', size: 5, 'aria-label': 'Step by', spellcheck: 'false'});
  controls.step = make('button', {class: 'button', type: 'submit'}, 'Step');
  controls.pacing = make('button', {
    class: 'button', type: 'button', onclick: set_pacing, 'aria-pressed': 'false',
    title: 'Each port of the main output waits with its next picture until it is asked for it',
  }, 'Hold pictures');
  controls.picture = make('button', {class: 'button', type: 'button', onclick: picture_on}, 'Next picture');
  by_id('clock-tools').append(
    make('div', {class: 'joined', role: 'group', 'aria-label': 'Clock'}, controls.run, controls.take),
    make('form', {class: 'joined', onsubmit: step}, controls.by, controls.step),
    make('div', {class: 'joined', role: 'group', 'aria-label': 'Pictures'}, controls.pacing, controls.picture));

  on('state', (state) => {
    at = {...state.clock, since: performance.now()};
    // Only a port under step pacing has pictures that wait.
    if (state.displays?.some((display) => display.device === 0 && display.ports.some((port) => port.queued > 0))) step_pacing = true;
    set_text(by_id('clock-wall'), `${new Date(state.clock.wall_us / 1000).toISOString().slice(0, 19).replace('T', ' ')} UTC on the board`);
    show_taken();
    show_pacing();
  });
  on('board', (board) => {
    if (board.power === 'on' && !board.exit) return;
    at = null;
    step_pacing = false;
    set_text(by_id('clock-time'), '--:--:--.---');
    set_text(by_id('clock-wall'), 'no power');
    show_taken();
    show_pacing();
  });
  setInterval(show_time, 50);
  show_taken();
  show_pacing();
}
