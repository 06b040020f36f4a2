/*
 * help.js - the keyboard's shortcuts, and the dialog that lists them.
 */
import {by_id, make} from './dom.js';
import {icon} from './icons.js';
import {kKeyboard} from './keys.js';

const kShown = {' ': 'Space', arrowup: 'Up', arrowdown: 'Down', arrowleft: 'Left', arrowright: 'Right', enter: 'Enter',
  backspace: 'Backspace', pageup: 'Page Up', pagedown: 'Page Down'};

function on_the_screen() {
  const by_button = new Map();
  for (const [key, button] of Object.entries(kKeyboard)) {
    if (/^\d$/.test(key)) continue;
    if (!by_button.has(button)) by_button.set(button, []);
    by_button.get(button).push(kShown[key] || key.toUpperCase());
  }
  by_button.set('0 to 9', ['0 … 9']);
  return [...by_button].map(([button, keys]) => [keys, button]);
}

function list(rows) {
  return make('dl', {class: 'shortcuts'}, ...rows.flatMap(([keys, what]) => [
    make('dt', {}, ...keys.flatMap((key, index) => [index ? ' ' : '', make('kbd', {}, key)])), make('dd', {}, what)]));
}

/* `shortcuts`: array of {key, about, run}; they work wherever no text is typed and the screen has no focus. */
export function init_help(shortcuts) {
  const dialog = by_id('help-dialog');
  const open = () => {
    if (!dialog.open) dialog.showModal();
  };
  dialog.append(
    make('div', {class: 'dialog-head'}, make('h2', {id: 'help-title'}, 'Keyboard'),
      make('button', {class: 'button', type: 'button', onclick: () => dialog.close()}, 'Close')),
    make('div', {class: 'dialog-body'},
      make('section', {}, make('h3', {}, 'On the page'),
        list([...shortcuts.map(({key, about}) => [[key.toUpperCase()], about]), [['?'], 'this list'], [['Tab'], 'to the next control'],
          [['Esc'], 'cancel marking, close this list']])),
      make('section', {}, make('h3', {}, 'On the screen: the remote control'), list(on_the_screen()))));
  dialog.addEventListener('click', (event) => {
    if (event.target === dialog) dialog.close();
  });
  by_id('help').append(icon('help'));
  by_id('help').addEventListener('click', open);

  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey || dialog.open) return;
    if (event.target.matches('input:not([type="checkbox"]), textarea, select')) return;
    if (event.key === '?') {
      event.preventDefault();
      open();
      return;
    }
    const shortcut = shortcuts.find(({key}) => key === event.key.toLowerCase());
    if (!shortcut || event.target.id === 'screen' || event.repeat) return;
    event.preventDefault();
    shortcut.run();
  });
}
