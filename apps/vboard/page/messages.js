/*
 * messages.js - what happened, newest first: what the board refused, what was recorded, when the
 * program began and ended.
 */
import {on, request, RequestError} from './api.js';
import {by_id, make, set_text} from './dom.js';

const kMost = 200;
const kSameWithin = 1500; // ms in which an answer and an event about one refusal arrive

let last = {text: '', at: 0};

/* kind: "note", "good", "bad", "step" */
export function tell(kind, text) {
  const now = performance.now();
  const same = now - last.at < kSameWithin && (last.text.includes(text) || text.includes(last.text)) && last.text;
  if (same) return;
  last = {text, at: now};
  const time = new Date().toLocaleTimeString('en-GB');
  const list = by_id('messages');
  const newest = list.firstElementChild;
  if (newest?.dataset.text === text) {
    newest.dataset.times = Number(newest.dataset.times) + 1;
    set_text(newest.lastElementChild, `${text} (${newest.dataset.times} times)`);
    return;
  }
  list.querySelector('.hint')?.remove();
  list.prepend(make('li', {'data-kind': kind, 'data-text': text, 'data-times': 1}, make('time', {}, time), make('span', {}, text)));
  while (list.children.length > kMost) list.lastElementChild.remove();
  if (kind === 'bad') set_text(by_id('spoken'), text);
}

/* Carry out a request for the user; a refusal is told. Gives the result, or null. */
export async function act(name, parameters) {
  try {
    return await request(name, parameters);
  } catch (error) {
    tell('bad', words_of(error));
    return null;
  }
}

/* What went wrong with a request, in the board's own words where it has some. */
export function words_of(error) {
  if (!(error instanceof RequestError)) return 'The board is out of reach.';
  return (error.code === 'refused' ? 'Refused: ' : '') + plain(error.message);
}

const plain = (text) => text.replace(/^(v?board: )+/, '').trim();

export function init_messages() {
  by_id('messages').append(make('li', {class: 'hint'}, 'What the board refuses, what is recorded, and when the program starts and ends is told here.'));
  on('refusal', ({text}) => tell('bad', 'Refused: ' + plain(text)));
  on('recorded', ({line}) => tell('step', 'Recorded: ' + line.trim()));
}
