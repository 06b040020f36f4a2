/*
 * numbers.js - how times, sizes and rates are written on the page, and how a duration that was typed is read.
 */
const kUnits = {us: 1, ms: 1e3, s: 1e6, m: 60e6, min: 60e6, h: 3600e6};

/* Microseconds of "40ms", "2s", "1m 30s"; without a unit: milliseconds. NaN when it is none. */
export function microseconds(text) {
  const parts = text.trim().toLowerCase().replaceAll('µ', 'u').match(/[\d.]+\s*[a-z]*/g);
  if (!parts || parts.join('').replace(/\s/g, '') !== text.trim().toLowerCase().replaceAll('µ', 'u').replace(/\s/g, '')) return NaN;
  return parts.reduce((sum, part) => {
    const [, number, unit] = part.match(/([\d.]+)\s*([a-z]*)/);
    return sum + Math.round(Number(number) * (kUnits[unit || 'ms'] ?? NaN));
  }, 0);
}

const two = (number) => String(number).padStart(2, '0');

/* Board time as 00:01:02.345. */
export function clock_text(us) {
  const ms = Math.floor(us / 1000);
  const s = Math.floor(ms / 1000);
  return `${two(Math.floor(s / 3600))}:${two(Math.floor(s / 60) % 60)}:${two(s % 60)}.${String(ms % 1000).padStart(3, '0')}`;
}

/* 2026-11-22 09:00:00 of seconds since 1970, UTC. */
export const date_text = (seconds) => new Date(seconds * 1000).toISOString().slice(0, 19).replace('T', ' ');

export const count = (number) => Number(number || 0).toLocaleString('en-GB');

export function bytes_text(bytes) {
  if (bytes < 1000) return `${bytes} B`;
  if (bytes < 1e6) return `${(bytes / 1000).toFixed(1)} kB`;
  return `${(bytes / 1e6).toFixed(2)} MB`;
}

export function duration_text(us) {
  if (us === null || us === undefined) return '–';
  if (us < 1000) return `${us} µs`;
  if (us < 1e6) return `${(us / 1000).toFixed(us < 1e4 ? 2 : 1)} ms`;
  return `${(us / 1e6).toFixed(2)} s`;
}

/*
 * Rates from counters: how much each grew in the last two seconds of real time. A counter that went
 * back began anew, and so does its rate.
 */
export class Rates {
  constructor(window_ms = 2000) {
    this.window_ms = window_ms;
    this.samples = new Map();
  }

  /* Add a counter's value and give its growth per second; null while too little is known. */
  add(name, value, now = performance.now()) {
    let samples = this.samples.get(name);
    if (!samples || value < samples[samples.length - 1].value) this.samples.set(name, samples = []);
    samples.push({now, value});
    while (samples.length > 2 && samples[1].now <= now - this.window_ms) samples.shift();
    const span = now - samples[0].now;
    return span < 350 ? null : 1000 * (value - samples[0].value) / span;
  }

  forget() {
    this.samples.clear();
  }
}
