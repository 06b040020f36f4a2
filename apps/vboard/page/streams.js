/*
 * streams.js - tables of the decoders and of the display's ports. Rates are computed here, from what the
 * counters grew by in the last two seconds.
 */
import {on} from './api.js';
import {keep_rows, make, set_attribute, set_text, show} from './dom.js';
import {Graph, Histories} from './graph.js';
import {bytes_text, count, Rates} from './numbers.js';

const kCodecs = {h264: 'H.264', h265: 'H.265', jpeg: 'JPEG'};
const rates = new Rates();
const histories = new Histories(); // of the decoders, by channel

const fixed = (rate, digits) => (rate === null ? '–' : rate.toFixed(digits));
const size = (width, height) => (width ? `${width}×${height}` : '–');

// heading, title, text of a cell, tone of a cell; those with `wide` only where there is room
const kDecoderColumns = [
  {head: 'Ch', cell: (d) => d.channel},
  {head: 'Codec', start: true, cell: (d) => (d.created ? kCodecs[d.codec] || d.codec : '–')},
  {head: 'Size', cell: (d) => size(d.width, d.height)},
  {head: 'Pict/s', about: 'pictures decoded a second', cell: (d) => fixed(d.rate, 1)},
  {head: 'kbit/s', about: 'bits sent to the decoder', cell: (d) => {
    const rate = rates.add(`b${d.channel}`, d.bytes_sent);
    return rate === null ? '–' : count(Math.round(rate * 8 / 1000));
  }},
  {head: 'Backlog', about: 'sent and not yet decoded', cell: (d) => bytes_text(d.backlog_bytes)},
  {head: 'Dropped', about: 'pictures never shown', cell: (d) => count(d.dropped)},
  {head: 'Damaged', about: 'pictures withheld: damaged, or waiting for a key frame', cell: (d) => count(d.damaged), warn: (d) => d.damaged > 0},
];
const kMore = [
  ['Sends', 'frames_sent'], ['Sends refused', 'sends_refused'], ['Decoded', 'decoded'], ['Shown', 'shown'],
  ['Backlog, sends', 'backlog'], ['Late', 'late'], ['Errors', 'decode_errors'], ['Resets', 'resets'], ['Recreated', 'recreations'],
];
const kPortColumns = [
  {head: 'Port', cell: (p) => `${p.device} / ${p.port}`},
  {head: 'Shows', start: true, cell: (p) => (p.bound ? `channel ${p.source_channel}` : 'nothing')},
  {head: 'State', start: true, cell: (p) => (!p.enabled ? 'off' : p.hidden ? 'hidden' : p.has_picture ? 'on screen' : 'empty')},
  {head: 'Picture', cell: (p) => size(p.picture_width, p.picture_height)},
  {head: 'Pict/s', about: 'pictures shown a second', cell: (p) => fixed(rates.add(`p${p.device}/${p.port}`, p.shown), 1)},
  {head: 'Queued', about: 'pictures waiting, while pictures are held', cell: (p) => count(p.queued)},
  {head: 'Shown', cell: (p) => count(p.shown)},
  {head: 'Dropped', about: 'pictures replaced before they were shown', cell: (p) => count(p.dropped)},
];

class Table {
  constructor(title, columns, key_of, more) {
    this.columns = columns;
    this.key_of = key_of;
    this.more = more;
    this.rows = new Map();
    this.body = make('tbody');
    this.empty = make('p', {class: 'empty'});
    this.table = make('table', {class: 'figures'},
      make('thead', {}, make('tr', {}, ...columns.map((column) =>
        make('th', {scope: 'col', class: column.start ? 'start' : undefined, title: column.about}, column.head)))), this.body);
    this.element = make('section', {class: 'table-section'}, make('h3', {}, title), this.table, this.empty);
  }

  update(items, reason) {
    show(this.table, items.length > 0);
    show(this.empty, items.length === 0);
    set_text(this.empty, reason);
    const shown = this.more ? items.flatMap((item) => (this.open === this.key_of(item) ? [item, {more_of: item}] : [item])) : items;
    keep_rows(this.body, this.rows, shown, (item) => (item.more_of ? 'more' : this.key_of(item)),
      (item) => (item.more_of ? this.make_more() : this.make_row(item)), (row, item) => this.update_row(row, item));
  }

  make_row(item) {
    const row = make('tr', {}, ...this.columns.map((column) => make('td', {class: column.start ? 'start' : undefined})));
    if (!this.more) return row;
    const key = this.key_of(item);
    row.firstElementChild.append(make('button', {class: 'unfold', type: 'button', 'aria-expanded': 'false', onclick: () => {
      this.open = this.open === key ? null : key;
      if (this.last) this.update(this.last, '');
    }}));
    return row;
  }

  make_more() {
    this.graph = new Graph();
    return make('tr', {class: 'more'}, make('td', {colspan: this.columns.length}, this.graph.element,
      make('dl', {}, ...this.more.map(([name]) => make('div', {}, make('dt', {}, name), make('dd'))))));
  }

  update_row(row, item) {
    if (item.more_of) {
      this.graph.draw(histories.get(item.more_of.channel));
      this.more.forEach(([, field], index) => set_text(row.querySelectorAll('dd')[index], count(item.more_of[field])));
      return;
    }
    this.columns.forEach((column, index) => {
      const cell = row.children[index];
      const holder = cell.firstElementChild || cell;
      set_text(holder, column.cell(item));
      if (column.warn) set_attribute(cell, 'data-tone', column.warn(item) ? 'bad' : 'none');
    });
    const unfold = row.querySelector('.unfold');
    if (unfold) {
      set_attribute(unfold, 'aria-expanded', this.open === this.key_of(item));
      set_attribute(unfold, 'aria-label', `Decoder ${item.channel}: all counters`);
    }
  }

  refresh(items, reason) {
    this.last = items;
    this.update(items, reason);
  }
}

export function streams_panel() {
  const decoders = new Table('Decoders', kDecoderColumns, (d) => d.channel, kMore);
  const ports = new Table('Ports of the displays', kPortColumns, (p) => `${p.device}/${p.port}`);
  const nodes = make('p', {class: 'small'});
  const memory = make('p', {class: 'small figures'});

  on('state', (state) => {
    for (const decoder of state.decoders || []) {
      decoder.rate = rates.add(`d${decoder.channel}`, decoder.decoded);
      histories.add(decoder.channel, {rate: decoder.rate || 0, backlog: decoder.backlog_bytes});
    }
    decoders.refresh(state.decoders || [], 'No decoder was ever created.');
    ports.refresh((state.displays || []).flatMap((display) => display.ports.map((port) => ({...port, device: display.device}))),
      'No port was ever used.');
    set_text(memory, state.memory_kb ? `The program's memory: ${(state.memory_kb / 1024).toFixed(1)} MiB` : '');
    set_text(nodes, state.nodes?.length ? `Nodes that it opened itself: ${state.nodes.map((node) => node.path).join(', ')}` : '');
  });
  on('board', (board) => {
    if (board.power === 'on' && !board.exit) return;
    rates.forget();
    histories.forget();
    decoders.refresh([], 'The program is not running.');
    ports.refresh([], 'The program is not running.');
    set_text(memory, '');
    set_text(nodes, '');
  });
  return make('div', {class: 'streams'}, decoders.element, ports.element, memory, nodes);
}
