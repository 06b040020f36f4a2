/*
 * instruments.js - watchdog, sound level, clock chip.
 */
import {on} from './api.js';
import {act, tell} from './messages.js';
import {by_id, make, set_attribute, set_text} from './dom.js';
import {count, date_text} from './numbers.js';

const kQuietest = -60;      // dBFS at the left end of the meter
const kPeakHeld = 1500;     // ms

function tag(id, text, tone) {
  set_text(by_id(id), text);
  set_attribute(by_id(id), 'data-tone', tone);
}

/* ---------------------------------------------------------------------------------- watchdog --- */

function show_watchdog(watchdog) {
  const bar = by_id('watchdog');
  if (!watchdog) {
    tag('watchdog-state', 'off', 'none');
    bar.firstElementChild.style.width = '0';
    set_text(by_id('watchdog-text'), ' ');
    return;
  }
  const left = watchdog.remaining_us / 1e6;
  const part = watchdog.enabled ? Math.min(left / watchdog.timeout_s, 1) : 0;
  bar.firstElementChild.style.width = `${100 * part}%`;
  set_attribute(bar, 'data-tone', part > 0.5 ? 'good' : part > 0.2 ? 'warn' : 'bad');
  set_attribute(bar, 'aria-valuemax', watchdog.timeout_s);
  set_attribute(bar, 'aria-valuenow', left.toFixed(0));
  if (watchdog.expired) tag('watchdog-state', 'expired', 'bad');
  else if (watchdog.enabled) tag('watchdog-state', 'runs', 'good');
  else tag('watchdog-state', 'off', 'none');
  const last = watchdog.boot_reason === 'watchdog' ? ' · reset the board' : '';
  set_text(by_id('watchdog-text'), watchdog.enabled
    ? `${left.toFixed(1)} of ${watchdog.timeout_s} s · fed ${count(watchdog.feeds)}×${last}`
    : `time-out ${watchdog.timeout_s} s · fed ${count(watchdog.feeds)}×${last}`);
}

/* ------------------------------------------------------------------------------------- sound --- */

let peak = {db: kQuietest, at: 0};

const place = (db) => 100 * Math.min(Math.max((db - kQuietest) / -kQuietest, 0), 1);

function show_sound(devices) {
  const meter = by_id('sound');
  const [level, mark] = meter.children;
  const device = devices?.find((one) => one.channel_enabled) || devices?.[0];
  if (!device) {
    tag('sound-state', 'off', 'none');
    level.style.clipPath = 'inset(0 100% 0 0)';
    mark.style.left = '-4px';
    set_text(by_id('sound-text'), 'no output is enabled');
    return;
  }
  const now = performance.now();
  if (device.peak_dbfs >= peak.db || now - peak.at > kPeakHeld) peak = {db: device.peak_dbfs, at: now};
  level.style.clipPath = `inset(0 ${100 - place(device.rms_dbfs)}% 0 0)`;
  mark.style.left = peak.db <= kQuietest ? '-4px' : `calc(${place(peak.db)}% - 2px)`;
  set_attribute(meter, 'aria-valuenow', Math.max(device.rms_dbfs, kQuietest).toFixed(0));
  const silent = device.peak_dbfs <= kQuietest;
  tag('sound-state', device.muted ? 'muted' : silent ? 'silent' : 'plays', device.muted ? 'warn' : silent ? 'none' : 'good');
  const loudness = silent ? 'below −60 dBFS' : `${device.rms_dbfs.toFixed(1)} dBFS, peak ${peak.db.toFixed(1)}`;
  set_text(by_id('sound-text'), `${loudness} · ${device.volume_db} dB`.replaceAll('-', '−'));
}

/* -------------------------------------------------------------------------------- clock chip --- */

function show_chip(rtc) {
  if (!rtc) {
    set_text(by_id('chip-time'), '----------');
    tag('chip-state', 'no power', 'none');
    return;
  }
  const known = rtc.seconds !== null && rtc.seconds !== undefined;
  set_text(by_id('chip-time'), known ? date_text(rtc.seconds) : 'time lost');
  if (rtc.battery && known) tag('chip-state', 'battery good', 'good');
  else tag('chip-state', 'battery failed', 'bad');
}

function init_chip() {
  const field = make('input', {type: 'text', 'aria-label': 'Time of the clock chip, UTC', spellcheck: 'false',
    placeholder: 'now', title: '2026-03-29 01:59:00, UTC; nothing = this computer’s time'});
  by_id('chip-tools').append(
    make('div', {class: 'joined'}, field, make('button', {class: 'button', type: 'submit'}, 'Set')),
    make('button', {class: 'button', type: 'button', onclick: () => act('rtc', {battery: 'fail'})}, 'Battery fails'));
  by_id('chip-tools').addEventListener('submit', (event) => {
    event.preventDefault();
    const text = field.value.trim();
    const ms = text ? Date.parse(text.replace(' ', 'T').replace(/Z?$/, 'Z')) : Date.now();
    if (Number.isNaN(ms) || ms < 0) tell('bad', `"${text}" is no time: 2026-03-29 01:59:00`);
    else act('rtc', {seconds: Math.floor(ms / 1000)});
  });
}

export function init_instruments() {
  init_chip();
  on('state', (state) => {
    show_watchdog(state.watchdog);
    show_sound(state.audio);
    show_chip(state.rtc);
  });
  on('board', (board) => {
    if (board.power === 'on' && !board.exit) return;
    show_watchdog(null);
    show_sound(null);
    show_chip(null);
  });
  show_watchdog(null);
  show_sound(null);
  show_chip(null);
}
