/*
 * status.js - how the board is: in the heading, on the lamp of the monitor, and in plain words over the
 * screen where there is nothing to be seen.
 */
import {on} from './api.js';
import {act, tell} from './messages.js';
import {by_id, set_attribute, set_text, show} from './dom.js';

let link = {up: false, code: ''};
let board = null;
let monitor = null;
let ever_linked = false;
let state_at = performance.now(); // when the program was heard of last

const kSilentAfter = 3000; // ms; states come five times a second, unless the program stands still in a debugger

const kSignals = {1: 'HUP', 2: 'INT', 3: 'QUIT', 4: 'ILL', 6: 'ABRT', 7: 'BUS', 8: 'FPE', 9: 'KILL', 11: 'SEGV', 13: 'PIPE', 15: 'TERM'};

function how_it_ended(exit) {
  if (exit.signal === undefined || exit.signal === null) return `with exit status ${exit.status}`;
  const name = kSignals[exit.signal] ? ` (${kSignals[exit.signal]})` : '';
  return `by signal ${exit.signal}${name}`;
}

/* What is to be said: {state, short, title, text, button}; without a title the screen is free. */
function present() {
  if (!link.up && link.code === 'unauthorized')
    return {state: 'lost', short: 'No access', title: 'This page has no access to the board',
      text: 'The board was started anew, or the address lacks its token. Open the address that "vboard run" has printed.'};
  if (!link.up && board?.exit && !board.pid)
    return {state: 'ended', short: 'Ended', title: 'The program has ended',
      text: `It ended ${how_it_ended(board.exit)}, and "vboard run" with it. This page goes on trying.`};
  if (!link.up)
    return {state: 'lost', short: ever_linked ? 'Connection lost' : 'Connecting',
      title: ever_linked ? 'The board is out of reach' : 'Looking for the board',
      text: ever_linked ? '"vboard run" has ended, or cannot be reached. This page goes on trying.' : ''};
  if (board?.power === 'off')
    return {state: 'off', short: 'Power off', title: 'The power is off', text: 'The program is not running.', button: 'Switch on'};
  if (board?.exit && !board.pid)
    return {state: 'ended', short: 'Ended', title: 'The program has ended', text: `It ended ${how_it_ended(board.exit)}.`, button: 'Start it again'};
  if (monitor && !monitor.plugged)
    return {state: 'on', short: 'Running', title: 'The monitor is unplugged', text: 'The program goes on running.', button: 'Plug it in', plug: true};
  if (monitor && !monitor.signal)
    return {state: 'on', short: 'Running', title: 'No signal', text: 'The program does not drive the monitor.'};
  if (board?.pid && performance.now() - state_at > kSilentAfter) return {state: 'stalled', short: 'Not answering'};
  return {state: 'on', short: 'Running'};
}

let shown = null;

function show_status() {
  const now = present();
  shown = now;
  set_attribute(by_id('status'), 'data-state', now.state);
  set_text(by_id('status-text'), now.short);
  show(by_id('notice'), Boolean(now.title));
  set_text(by_id('notice-title'), now.title || '');
  set_text(by_id('notice-text'), now.text || '');
  set_text(by_id('notice-button'), now.button || '');
  show(by_id('notice-button'), Boolean(now.button));
  set_attribute(by_id('screen-lamp'), 'data-lit', now.state === 'on' && Boolean(monitor?.signal));
  document.body.dataset.state = now.state;
}

function tell_changes(before, now) {
  if (!before) return;
  if (before.power === 'on' && now.power === 'off') tell('note', 'The power was switched off.');
  else if (now.exit && !now.pid && now.power === 'on' && before.pid) tell('bad', `The program has ended ${how_it_ended(now.exit)}.`);
  if (now.starts > before.starts)
    tell('good', `The program was started: start ${now.starts}${now.boot_reason === 'watchdog' ? ', because the watchdog had expired' : ''}.`);
}

function show_board(now) {
  tell_changes(board, now);
  board = now;
  if (board.power === 'off' || (board.exit && !board.pid)) monitor = null;
  set_text(by_id('board-name'), board.name);
  document.title = `${board.name} – vboard`;
  const [path = '', ...words] = board.program || [];
  const program = [path, ...words].join(' ');
  set_text(by_id('program'), [path.split('/').pop(), ...words].join(' '));
  set_attribute(by_id('program'), 'title', `${program}\nfolder ${board.folder}\nstart ${board.starts}, boot reason ${board.boot_reason}`);
  show_status();
}

export function init_status() {
  on('link', (now) => {
    if (link.up && !now.up) tell('bad', 'The board is out of reach.');
    else if (!link.up && now.up && ever_linked) tell('good', 'The board is there again.');
    ever_linked ||= now.up;
    link = now;
    show_status();
  });
  on('board', show_board);
  on('state', (state) => {
    monitor = state.monitor;
    state_at = performance.now();
    show_status();
  });
  by_id('notice-button').addEventListener('click', () => {
    if (shown?.plug) act('monitor', {plug: 'on'});
    else act('power', {to: 'on'});
  });
  setInterval(show_status, 1000);
  show_status();
}
