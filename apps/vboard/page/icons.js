/*
 * icons.js - the signs on keys and buttons, drawn with lines on a field of 24 by 24.
 */
const kPaths = {
  up: 'M6 15l6-6 6 6',
  down: 'M6 9l6 6 6-6',
  left: 'M15 6l-6 6 6 6',
  right: 'M9 6l6 6-6 6',
  back: 'M9 7l-5 5 5 5M4 12h10a5 5 0 0 1 5 5v1',
  play: 'F8 5l11 7-11 7z',
  pause: 'F7 5h3.6v14H7zM13.4 5H17v14h-3.6z',
  stop: 'F6.5 6.5h11v11h-11z',
  faster: 'F4 6l8 6-8 6zM12 6l8 6-8 6z',
  previous: 'F19 6l-9 6 9 6zM6 6h2.6v12H6z',
  next: 'F5 6l9 6-9 6zM15.4 6H18v12h-2.6z',
  record: 'F12 6a6 6 0 1 0 0 12 6 6 0 0 0 0-12z',
  snapshot: 'M4 8h3.5l1.5-2.5h6L16.5 8H20v11H4zM12 16.5a3.3 3.3 0 1 0 0-6.6 3.3 3.3 0 0 0 0 6.6z',
  zoom: 'M10.5 16a5.5 5.5 0 1 0 0-11 5.5 5.5 0 0 0 0 11zM14.7 14.7L20 20',
  'zoom-in': 'M10.5 16a5.5 5.5 0 1 0 0-11 5.5 5.5 0 0 0 0 11zM14.7 14.7L20 20M10.5 8v5M8 10.5h5',
  'zoom-out': 'M10.5 16a5.5 5.5 0 1 0 0-11 5.5 5.5 0 0 0 0 11zM14.7 14.7L20 20M8 10.5h5',
  'volume-up': 'M4 10v4h3l4 3.5v-11L7 10zM17 9v6M14 12h6',
  'volume-down': 'M4 10v4h3l4 3.5v-11L7 10zM14 12h6',
  mute: 'M4 10v4h3l4 3.5v-11L7 10zM15 9.5l5 5M20 9.5l-5 5',
  sound: 'M4 10v4h3l4 3.5v-11L7 10zM15 9a4.5 4.5 0 0 1 0 6M17.5 6.5a8 8 0 0 1 0 11',
  layout: 'M4 5h16v14H4zM12 5v14M4 12h16',
  menu: 'M5 7h14M5 12h14M5 17h14',
  power: 'M12 4v8M7.5 6.8a7 7 0 1 0 9 0',
  theme: 'M12 4a8 8 0 1 0 0 16zM12 4a8 8 0 0 1 0 16',
  help: 'M9 9.2a3 3 0 1 1 4.3 2.7c-.9.5-1.3 1-1.3 2.1M12 17.2v.3',
  cable: 'M8 4v5M16 4v5M6 9h12v3a6 6 0 0 1-12 0zM12 18v3',
  motion: 'M4 9c2.7-4 5.3 4 8 0s5.3 4 8 0M4 16c2.7-4 5.3 4 8 0s5.3 4 8 0',
  chevron: 'M9 6l6 6-6 6',
};

/* A drawing, hidden from readers: what holds it has a label. */
export function icon(name) {
  const svg = document.createElementNS('http://www.w3.org/2000/svg', 'svg');
  svg.setAttribute('viewBox', '0 0 24 24');
  svg.setAttribute('aria-hidden', 'true');
  svg.classList.add('icon');
  const path = document.createElementNS('http://www.w3.org/2000/svg', 'path');
  const filled = kPaths[name].startsWith('F');
  path.setAttribute('d', filled ? 'M' + kPaths[name].slice(1) : kPaths[name]);
  path.setAttribute('fill', filled ? 'currentColor' : 'none');
  path.setAttribute('stroke', filled ? 'none' : 'currentColor');
  path.setAttribute('stroke-width', '1.8');
  path.setAttribute('stroke-linecap', 'round');
  path.setAttribute('stroke-linejoin', 'round');
  svg.append(path);
  return svg;
}

export const has_icon = (name) => name in kPaths;
