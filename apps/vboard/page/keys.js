/*
 * keys.js - the remote controls and the keys of the front panel, and which key of this keyboard is
 * which button while the screen has the focus.
 *
 * Names are those of the board's lists of buttons and of panel keys.
 */
import {act} from './messages.js';
import {by_id, make} from './dom.js';
import {has_icon, icon} from './icons.js';

const kHeldAfter = 400; // ms from which on a button counts as held

const _ = null; // no key in this place

const kLargeRemote = [
  ['cross', 3, ['menu', 'up', 'back', 'left', 'enter', 'right', 'layout', 'down', 'zoom']],
  ['transport', 3, ['previous', 'play', 'next', 'stop', 'pause', 'faster']],
  ['digits', 4, ['1', '2', '3', 'mute', '4', '5', '6', 'record', '7', '8', '9', 'snapshot', _, '0']],
];
const kSmallRemote = [
  ['rockers', 2, ['volume-up', 'zoom-in', 'volume-down', 'zoom-out']],
  ['functions', 2, ['small-snapshot', 'small-pause', 'small-back', 'small-0']],
  ['functions', 1, ['f1', 'f2', 'f3', 'f4', 'f5']],
];
const kThirdRemote = [['single', 1, ['third-0']]];

const kPanel = [
  ['cross', 3, ['menu', 'up', 'back', 'left', 'enter', 'right', 'layout', 'down', 'zoom']],
  ['transport', 3, ['previous', 'play', 'next', 'stop', 'pause', 'faster', 'record', 'snapshot', 'mute']],
  ['digits', 5, ['1', '2', '3', '4', '5', '6', '7', '8', '9', '0', 'f1', 'f2', 'f3', 'f4', 'f5']],
  ['rockers', 2, ['volume-up', 'zoom-in', 'volume-down', 'zoom-out']],
];

/* Of this keyboard, KeyboardEvent.key in lower case. */
export const kKeyboard = {
  arrowup: 'up', arrowdown: 'down', arrowleft: 'left', arrowright: 'right', enter: 'enter', backspace: 'back',
  m: 'menu', l: 'layout', p: 'play', ' ': 'pause', s: 'stop', f: 'faster', pageup: 'previous', pagedown: 'next',
  c: 'snapshot', r: 'record', z: 'zoom', '=': 'zoom-in', '+': 'zoom-in', '-': 'zoom-out', x: 'mute',
  '.': 'volume-up', ',': 'volume-down',
  0: '0', 1: '1', 2: '2', 3: '3', 4: '4', 5: '5', 6: '6', 7: '7', 8: '8', 9: '9',
};

const kSpoken = {
  'small-snapshot': 'snapshot (small remote)', 'small-back': 'back (small remote)',
  'small-pause': 'pause (small remote)', 'small-0': '0 (small remote)', 'third-0': '0 (third remote)',
  'volume-up': 'volume up', 'volume-down': 'volume down', 'zoom-in': 'zoom in', 'zoom-out': 'zoom out',
};

function face(name) {
  const shown = name.replace(/^(small|third)-/, '');
  if (shown === 'enter') return 'OK';
  return has_icon(shown) ? icon(shown) : shown.toUpperCase();
}

function key_button(kind, name) {
  if (name === _) return make('span');
  const spoken = kSpoken[name] || name;
  const button = make('button', {
    class: 'key', type: 'button', 'data-key': name, 'data-kind': kind, 'aria-label': spoken, title: spoken,
  }, face(name));
  if (kind === 'panel') button.addEventListener('click', () => act('panel', {key: name}));
  else can_be_held(button, name);
  return button;
}

/* A click presses; a button that stays down longer is held until it is let go. */
function can_be_held(button, name) {
  let timer = 0;
  let held = false;
  const let_go = () => {
    clearTimeout(timer);
    button.classList.remove('down');
    if (held) act('release');
  };
  button.addEventListener('pointerdown', (event) => {
    if (event.button !== 0) return;
    button.setPointerCapture(event.pointerId);
    held = false;
    clearTimeout(timer);
    timer = setTimeout(() => {
      held = true;
      button.classList.add('down');
      act('hold', {button: name});
    }, kHeldAfter);
  });
  button.addEventListener('pointerup', let_go);
  button.addEventListener('pointercancel', let_go);
  button.addEventListener('contextmenu', (event) => event.preventDefault());
  button.addEventListener('click', () => {
    if (!held) act('press', {button: name});
    held = false;
  });
}

function key_block(kind, [style, columns, names]) {
  return make('div', {class: `key-block ${style} columns-${columns}`}, ...names.map((name) => key_button(kind, name)));
}

function remote_control(title, style, blocks) {
  return make('section', {class: `remote ${style}`, 'aria-label': title},
    make('i', {class: 'remote-eye'}),
    ...blocks.map((block) => key_block('remote', block)),
    make('p', {class: 'remote-name'}, title));
}

export function remote_controls() {
  return make('div', {class: 'remotes'},
    remote_control('Remote control', 'large', kLargeRemote),
    make('div', {class: 'remotes-side'},
      remote_control('Small remote', 'small', kSmallRemote),
      make('div', {class: 'remotes-end'},
        remote_control('Third', 'third', kThirdRemote),
        make('p', {class: 'hint'}, 'Keep a key down to hold the button.'),
        make('p', {class: 'hint'}, 'Click on the screen, and this keyboard is the remote control.'))));
}

/* Keys pressed on the screen. A key that repeats is held until it is let go. */
function keyboard_on_the_screen() {
  const screen = by_id('screen');
  let held = null; // KeyboardEvent.code of it
  screen.addEventListener('keydown', (event) => {
    const button = kKeyboard[event.key.toLowerCase()];
    if (!button || event.ctrlKey || event.altKey || event.metaKey) return;
    event.preventDefault();
    event.stopPropagation();
    if (!event.repeat) {
      act('press', {button});
      flash(button);
    } else if (held !== event.code) {
      held = event.code;
      act('hold', {button});
    }
  });
  const let_go = () => {
    if (held) act('release');
    held = null;
  };
  screen.addEventListener('keyup', (event) => {
    if (event.code === held) let_go();
  });
  screen.addEventListener('blur', let_go);
}

/* The key of the remote control that a keyboard pressed goes down for a moment. */
function flash(name) {
  for (const key of document.querySelectorAll(`.key[data-kind="remote"][data-key="${name}"]`)) {
    key.classList.add('down');
    setTimeout(() => key.classList.remove('down'), 130);
  }
}

export function init_keys() {
  by_id('panel-keys').append(...kPanel.map((block) => key_block('panel', block)));
  keyboard_on_the_screen();
}
