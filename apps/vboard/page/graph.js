/*
 * graph.js - a line of the last minute: a decoder's pictures a second, and its backlog as an area below.
 */
import {make, set_text} from './dom.js';

const kSvg = 'http://www.w3.org/2000/svg';
const kSamples = 300; // five a second
const kWidth = 300;
const kHeight = 48;

function shape(name, style) {
  const element = document.createElementNS(kSvg, name);
  element.setAttribute('class', style);
  return element;
}

const points = (samples, most) => samples.map((value, index) =>
  `${(kWidth - samples.length + index).toFixed(0)},${(kHeight - 2 - (kHeight - 4) * Math.min((value || 0) / most, 1)).toFixed(1)}`);

export class Graph {
  constructor() {
    this.rate = shape('polyline', 'graph-rate');
    this.backlog = shape('polygon', 'graph-backlog');
    const svg = shape('svg', 'graph');
    svg.setAttribute('viewBox', `0 0 ${kWidth} ${kHeight}`);
    svg.setAttribute('preserveAspectRatio', 'none');
    svg.setAttribute('aria-hidden', 'true');
    svg.append(this.backlog, this.rate);
    this.legend = make('p', {class: 'graph-legend figures'});
    this.element = make('div', {class: 'graph-box'}, svg, this.legend);
  }

  /* `history`: array of {rate, backlog}, oldest first. */
  draw(history) {
    const rates = history.map((sample) => sample.rate);
    const backlogs = history.map((sample) => sample.backlog);
    const most = Math.max(5, ...rates) * 1.15;
    const deepest = Math.max(1, ...backlogs);
    this.rate.setAttribute('points', points(rates, most).join(' '));
    this.backlog.setAttribute('points',
      [`${kWidth - history.length},${kHeight}`, ...points(backlogs, deepest * 2), `${kWidth},${kHeight}`].join(' '));
    set_text(this.legend, `last minute: pictures/s up to ${Math.max(0, ...rates).toFixed(1)}, backlog up to ${(deepest / 1000).toFixed(1)} kB`);
  }
}

/* What was seen of each, newest last. */
export class Histories {
  constructor() {
    this.of = new Map();
  }

  add(key, sample) {
    if (!this.of.has(key)) this.of.set(key, []);
    const history = this.of.get(key);
    history.push(sample);
    if (history.length > kSamples) history.shift();
  }

  get = (key) => this.of.get(key) || [];

  forget() {
    this.of.clear();
  }
}
