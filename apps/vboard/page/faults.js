/*
 * faults.js - calls that are made to fail: which, from when, how often, with what code; and those in force.
 */
import {on, request} from './api.js';
import {act, tell} from './messages.js';
import {keep_rows, make, set_text, show} from './dom.js';
import {count} from './numbers.js';

export function faults_panel() {
  const names = make('datalist', {id: 'fault-calls'});
  const field = (label, attributes) => {
    const input = make('input', {required: true, ...attributes});
    return {input, element: make('label', {}, label, input)};
  };
  const call = field('Call', {type: 'text', list: 'fault-calls', placeholder: 'MI_VDEC_StartChn', spellcheck: 'false', autocomplete: 'off', id: 'fault-call'});
  const nth = field('From its nth', {type: 'number', min: 1, max: 4294967295, value: 1});
  const times = field('Times, 0 = all', {type: 'number', min: 0, max: 4294967295, value: 1});
  const code = field('Code', {type: 'number', min: -2147483648, max: 2147483647, value: -1});
  call.element.classList.add('wide');

  const form = make('form', {class: 'fault-form'}, call.element, nth.element, times.element, code.element,
    make('button', {class: 'button primary', type: 'submit'}, 'Let it fail'), names);
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    const parameters = {call: call.input.value.trim(), nth: Number(nth.input.value), count: Number(times.input.value), code: Number(code.input.value)};
    if (await act('fault', parameters)) {
      tell('good', `${parameters.call} fails with ${parameters.code}${parameters.nth > 1 ? ` from its call ${parameters.nth} on` : ''}.`);
      call.input.value = '';
      call.input.focus();
    }
  });

  const rows = new Map();
  const body = make('tbody');
  const table = make('table', {class: 'figures'}, make('thead', {}, make('tr', {},
    ...[['Call', 'start'], ['nth'], ['Times'], ['Code'], ['Seen'], ['Failed'], ['', '']].map(([head, side]) =>
      make('th', {scope: 'col', class: side || undefined}, head)))), body);
  const empty = make('p', {class: 'empty'}, 'No call is made to fail.');
  const all = make('button', {class: 'button', type: 'button', onclick: () => act('fault.clear')}, 'Take all back');
  const counts = make('p', {class: 'small figures'});

  const update = (faults) => {
    const list = faults?.list || [];
    show(table, list.length > 0);
    show(empty, list.length === 0);
    all.disabled = list.length === 0;
    keep_rows(body, rows, list, (fault) => fault.call, (fault) => make('tr', {},
      make('td', {class: 'start code'}, fault.call), ...[1, 2, 3, 4, 5].map(() => make('td')),
      make('td', {}, make('button', {class: 'button small-button', type: 'button', 'aria-label': `Take back: ${fault.call}`,
        onclick: () => act('fault.clear', {call: fault.call})}, 'Take back'))),
    (row, fault) => {
      [fault.nth, fault.count === 0 ? 'all' : fault.count, fault.code, fault.seen, fault.fired].forEach((value, index) =>
        set_text(row.children[index + 1], typeof value === 'number' && index !== 2 ? count(value) : String(value).replace('-', '−')));
    });
    set_text(counts, faults ? `${count(faults.set)} set, ${count(faults.refused)} refused, ${count(faults.fired)} calls failed, ${count(faults.unused)} faults never used` : '');
  };
  on('state', (state) => update(state.faults));
  on('board', (board) => {
    if (board.power === 'off' || board.exit) update(null);
    else if (!names.firstChild)
      request('fault.calls').then(({calls}) => names.replaceChildren(...calls.map((name) => make('option', {value: name}))), () => {});
  });
  update(null);
  return make('div', {class: 'faults'}, form, make('div', {class: 'scroll'}, table, empty), make('div', {class: 'row-ends'}, counts, all));
}
