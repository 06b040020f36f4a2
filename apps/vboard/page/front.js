/*
 * front.js - what the recorder has on its front beside the keys: power switch, lamps, buzzer, output lines;
 * and the cable of the monitor above it.
 *
 * The output lines that mean something on this board (enum BoardLine of nvrhal/board.h): 25 Wi-Fi module's
 * power, low = on; 26 its reset; 28 buzzer, high = sounds; 34 record; 90 disk lamp. Lit is high.
 */
import {on} from './api.js';
import {act} from './messages.js';
import {by_id, keep_rows, make, set_attribute, set_text} from './dom.js';
import {icon} from './icons.js';

const kLines = {25: 'Wi-Fi power', 26: 'Wi-Fi reset', 28: 'buzzer', 34: 'record', 90: 'disk'};
const kBuzzerLine = 28;

const kLamps = [
  // name, title, colour, lit?
  ['power', 'Power', 'green', () => powered],
  ['record', 'Record', 'red', (state) => state?.panel?.record_lamp],
  ['disk', 'Disk', 'amber', (state) => level(state, 90)],
  ['buzzer', 'Buzzer', 'sound', (state) => level(state, kBuzzerLine)],
];

let powered = false;
const lamps = new Map();
const lines = new Map();

const level = (state, line) => state?.gpio?.find((one) => one.line === line)?.level;

function show_lamps(state) {
  for (const [name, title, , lit] of kLamps) {
    const on_now = Boolean(lit(state));
    const lamp = lamps.get(name);
    set_attribute(lamp, 'data-lit', on_now);
    const silent = name === 'buzzer';
    set_attribute(lamp, 'aria-label', `${title}: ${on_now ? (silent ? 'sounds' : 'lit') : (silent ? 'silent' : 'dark')}`);
  }
}

function show_lines(state) {
  keep_rows(by_id('lines'), lines, state?.gpio || [], (line) => line.line,
    ({line}) => make('li', {}, make('span', {class: 'line-number'}, String(line)),
      make('span', {class: 'line-name'}, kLines[line] || 'line'), make('span', {class: 'line-level'})),
    (row, {line, level: value}) => {
      set_attribute(row, 'data-level', value);
      set_attribute(row, 'title', `GPIO line ${line} ${kLines[line] || ''}: ${value ? 'high' : 'low'}`);
      set_text(row.lastElementChild, value ? 'high' : 'low');
    });
}

/* ------------------------------------------------------------------------- the monitor's plug --- */

const kSvg = 'http://www.w3.org/2000/svg';

function drawing(name, attributes, ...children) {
  const element = document.createElementNS(kSvg, name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.append(...children);
  return element;
}

/* The socket under the monitor, and the plug with its cable to the recorder; both cables are drawn, one is seen. */
function plug_drawing() {
  const plug = drawing('g', {class: 'plug-body'},
    drawing('path', {class: 'plug-metal', d: 'M26 2h32v7l-3 5H29l-3-5z'}),
    drawing('rect', {class: 'plug-relief', x: 37, y: 30, width: 10, height: 8, rx: 2}),
    drawing('rect', {class: 'plug-shell', x: 22, y: 12, width: 40, height: 20, rx: 4}),
    drawing('path', {class: 'plug-grip', d: 'M32 17v10M37 17v10M42 17v10M47 17v10M52 17v10'}));
  return drawing('svg', {viewBox: '0 0 180 58', class: 'plug-drawing', 'aria-hidden': 'true'},
    drawing('path', {class: 'cable cable-in', d: 'M42 36c0 18 22 10 48 9s56-8 56 14'}),
    drawing('path', {class: 'cable cable-out', d: 'M77 47c-3 9 12 9 24 5s45-12 45 7'}),
    plug,
    drawing('path', {class: 'socket', d: 'M19 -3h46v6q0 4-4 4H23q-4 0-4-4z'}));
}

const kPull = 12; // pixels down that pull the plug, or up that put it in
let plugged = true;

function show_plug(monitor) {
  const plug = by_id('plug');
  plugged = Boolean(monitor.plugged);
  set_attribute(plug, 'aria-pressed', plugged);
  set_text(plug.querySelector('.plug-text span'), plugged ? 'plugged in' : 'unplugged');
  set_attribute(plug, 'title', plugged ? 'Pull the monitor’s plug' : 'Plug the monitor in');
}

function init_plug() {
  const plug = by_id('plug');
  plug.append(make('span', {class: 'plug-text'}, make('b', {}, 'Monitor'), make('span', {}, 'plugged in')), plug_drawing());
  let from = null; // where a pull began
  let pulled = false;
  plug.addEventListener('pointerdown', (event) => {
    from = event.clientY;
    pulled = false;
    plug.setPointerCapture(event.pointerId);
  });
  plug.addEventListener('pointermove', (event) => {
    if (from === null || pulled || (plugged ? event.clientY - from : from - event.clientY) < kPull) return;
    pulled = true;
    act('monitor', {plug: plugged ? 'off' : 'on'});
  });
  plug.addEventListener('pointerup', () => { from = null; });
  plug.addEventListener('pointercancel', () => { from = null; });
  plug.addEventListener('click', () => {
    if (!pulled) act('monitor', {plug: plugged ? 'off' : 'on'});
    pulled = false;
  });
}

export function init_front() {
  for (const [name, title, colour] of kLamps) {
    const lamp = make('li', {'data-lamp': name, 'data-lit': 'false', class: colour}, make('i'), make('span', {}, title));
    lamps.set(name, lamp);
    by_id('lamps').append(lamp);
  }
  const power = by_id('power');
  power.append(icon('power'));
  power.addEventListener('click', () => act('power', {to: powered ? 'off' : 'on'}));
  by_id('restart').addEventListener('click', () => act('power', {to: 'cycle'}));
  init_plug();

  on('board', (board) => {
    powered = board.power === 'on' && !board.exit;
    set_attribute(power, 'aria-pressed', powered);
    set_attribute(power, 'aria-label', powered ? 'Power: on' : 'Power: off');
    set_attribute(power, 'title', powered ? 'Switch the board off' : 'Switch the board on');
    if (!powered) {
      show_lamps(null);
      show_lines(null);
    } else {
      set_attribute(lamps.get('power'), 'data-lit', true);
    }
  });
  on('state', (state) => {
    show_lamps(state);
    show_lines(state);
    if (state.monitor) show_plug(state.monitor);
  });
}
