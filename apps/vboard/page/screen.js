/*
 * screen.js - the live screen, and the mouse on it.
 *
 * Each picture is asked for when the one before has come, and only while the page is looked at. The
 * mouse works in pixels of the board's output, whatever size the screen has here.
 */
import {emit, on, request, socket} from './api.js';
import {by_id, set_text} from './dom.js';
import {tell, words_of} from './messages.js';
import {marking} from './marking.js';

const kRate = 15;         // pictures a second at most
const kWidths = [640, 960, 1280];
const kAgainAfter = 700;  // ms
const kNotch = 60;        // pixels of scrolling that count as one notch of a wheel

const screen = by_id('screen');
const context = screen.getContext('2d', {alpha: false});
const output = {width: 1920, height: 1080};
let live = null;
let looked_at = true;
let linked = false;
const arrivals = []; // times of the pictures of the last two seconds

export const output_size = () => output;

/* Where a pointer is, in output pixels. */
export function output_position(event) {
  const box = screen.getBoundingClientRect();
  const within = (part, size) => Math.min(Math.max(Math.floor(part * size), 0), size - 1);
  return {
    x: within((event.clientX - box.left) / box.width, output.width),
    y: within((event.clientY - box.top) / box.height, output.height),
  };
}

/* ---------------------------------------------------------------------------------- pictures --- */

function wanted_width() {
  const shown = screen.clientWidth * window.devicePixelRatio;
  return kWidths.find((width) => width >= shown) || kWidths[kWidths.length - 1];
}

function watch() {
  const wanted = linked && looked_at && document.visibilityState === 'visible';
  if (wanted && !live) open_live();
  else if (!wanted && live) live.close();
}

function open_live() {
  const width = wanted_width();
  const connection = socket('/live', {width, rate: kRate});
  live = connection;
  connection.binaryType = 'blob';
  connection.onopen = () => connection.send('next');
  // The next picture is on its way while one is drawn, never more: a slow browser gets fewer of them.
  let drawing = 0;
  const ask = () => {
    if (connection.readyState === WebSocket.OPEN) connection.send('next');
  };
  connection.onmessage = async (message) => {
    const ahead = drawing === 0;
    if (ahead) ask();
    drawing += 1;
    if (message.data instanceof Blob) await draw(message.data);
    drawing -= 1;
    if (!ahead) ask();
    if (width !== wanted_width()) connection.close();
  };
  connection.onclose = () => {
    if (live === connection) live = null;
    arrivals.length = 0;
    setTimeout(watch, kAgainAfter);
  };
}

async function draw(jpeg) {
  let bitmap;
  try {
    bitmap = await createImageBitmap(jpeg);
  } catch {
    return; // the next one replaces it
  }
  if (screen.width !== bitmap.width || screen.height !== bitmap.height) {
    screen.width = bitmap.width;
    screen.height = bitmap.height;
    by_id('screen-frame').style.aspectRatio = `${bitmap.width} / ${bitmap.height}`;
  }
  context.drawImage(bitmap, 0, 0);
  bitmap.close();
  arrivals.push(performance.now());
  screen.dataset.pictures = Number(screen.dataset.pictures || 0) + 1;
  emit('picture');
}

function black() {
  context.fillStyle = '#000';
  context.fillRect(0, 0, screen.width, screen.height);
}

function tell_facts() {
  const since = performance.now() - 2000;
  while (arrivals.length && arrivals[0] < since) arrivals.shift();
  const rate = Math.round(arrivals.length / 2);
  const here = live ? `${rate} ${rate === 1 ? 'picture' : 'pictures'}/s here` : 'not looked at';
  set_text(by_id('screen-facts'), `${output.width} × ${output.height} · ${here}`);
}

/* ------------------------------------------------------------------------------------- mouse --- */

const waiting = []; // requests not yet sent; movements in a row are one
let sending = false;
let buttons = 0;

function mouse(change) {
  const newest = waiting[waiting.length - 1];
  const only_moves = (one) => one && one.buttons === undefined && one.wheel === undefined;
  if (only_moves(newest) && only_moves(change)) Object.assign(newest, change);
  else waiting.push(change);
  send_mouse();
}

async function send_mouse() {
  if (sending) return;
  sending = true;
  while (waiting.length) {
    const next = waiting.shift();
    try {
      await request('mouse', next);
    } catch (error) {
      waiting.length = 0;
      if (next.buttons) tell('bad', words_of(error));
    }
  }
  sending = false;
}

function follow_mouse() {
  let notches = 0;
  const with_buttons = (event) => {
    const position = output_position(event);
    if (event.buttons === buttons) {
      mouse(position);
    } else {
      buttons = event.buttons & 7; // left 1, right 2, middle 4, as the board counts them
      mouse({...position, buttons});
    }
  };
  screen.addEventListener('pointermove', (event) => {
    if (!marking.on) with_buttons(event);
  });
  screen.addEventListener('pointerdown', (event) => {
    if (marking.on) return;
    screen.setPointerCapture(event.pointerId);
    screen.focus({preventScroll: true});
    event.preventDefault();
    with_buttons(event);
  });
  screen.addEventListener('pointerup', (event) => {
    if (!marking.on) with_buttons(event);
  });
  screen.addEventListener('pointercancel', () => {
    if (buttons) mouse({buttons: 0});
    buttons = 0;
  });
  screen.addEventListener('contextmenu', (event) => event.preventDefault());
  screen.addEventListener('wheel', (event) => {
    event.preventDefault();
    notches -= event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? event.deltaY / kNotch : Math.sign(event.deltaY);
    const whole = Math.max(-100, Math.min(100, Math.trunc(notches)));
    if (whole === 0) return;
    notches -= whole;
    mouse({wheel: whole});
  }, {passive: false});
}

export function init_screen() {
  document.addEventListener('visibilitychange', watch);
  new IntersectionObserver(([entry]) => {
    looked_at = entry.isIntersecting;
    watch();
  }).observe(screen);
  on('link', ({up}) => {
    linked = up;
    watch();
  });
  on('state', ({monitor}) => {
    if (!monitor?.width) return;
    output.width = monitor.width;
    output.height = monitor.height;
  });
  on('board', (board) => {
    if (board.power === 'off' || board.exit) black();
  });
  follow_mouse();
  setInterval(tell_facts, 500);
  black();
}
