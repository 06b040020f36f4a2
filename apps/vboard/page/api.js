/*
 * api.js - the board's requests and events over HTTP and WebSocket.
 *
 * The token comes with the page's address and is taken out of it at once, so that it is not copied
 * along with the address. Which request has which method and path is read from the board's own
 * description (/api/1/description).
 */
const kRoot = '/api/1';
const kFirstWait = 400;  // ms until the first attempt to find a lost board again
const kLongestWait = 3000;

const token = take_token();
let description = null;

function take_token() {
  const address = new URL(location.href);
  const given = address.searchParams.get('token');
  if (given) {
    sessionStorage.setItem('token', given);
    address.searchParams.delete('token');
    history.replaceState(null, '', address);
  }
  return given || sessionStorage.getItem('token') || '';
}

export class RequestError extends Error {
  constructor(status, error) {
    super(error?.message || `The board answered with status ${status}.`);
    this.code = error?.code || '';
    this.parameter = error?.parameter;
  }
}

async function exchange(method, path, parameters, body) {
  const query = parameters && Object.keys(parameters).length ? '?' + new URLSearchParams(parameters) : '';
  const options = {method, headers: {Authorization: 'Bearer ' + token}, cache: 'no-store'};
  if (body) {
    options.body = JSON.stringify(body);
    options.headers['Content-Type'] = 'application/json';
  }
  const answer = await fetch(kRoot + path + query, options);
  const text = await answer.text();
  let value = {};
  try {
    if (text) value = JSON.parse(text);
  } catch {
    throw new RequestError(answer.status, {message: 'The board answered with something else than JSON.'});
  }
  if (!answer.ok) throw new RequestError(answer.status, value.error);
  return value;
}

/* The description of a request, once the board was reached. */
export const described = (name) => description?.requests.find((request) => request.name === name);

/* Carry out a request. Throws RequestError with the board's own words, or TypeError when it is out of reach. */
export async function request(name, parameters = {}) {
  if (!description) description = await exchange('GET', '/description');
  const {method, path} = described(name);
  const in_body = method === 'POST';
  return exchange(method, path, in_body ? null : parameters, in_body ? parameters : null);
}

export function socket(path, parameters = {}) {
  const address = new URL(kRoot + path, location.href);
  address.protocol = location.protocol === 'https:' ? 'wss:' : 'ws:';
  for (const [key, value] of Object.entries({...parameters, token})) address.searchParams.set(key, value);
  return new WebSocket(address);
}

/* Listeners by event: "board", "state", "refusal", "recorded" of the board; "link" of this module. */
const listeners = new Map();

export function on(event, listener) {
  if (!listeners.has(event)) listeners.set(event, []);
  listeners.get(event).push(listener);
}

export function emit(event, data) {
  for (const listener of listeners.get(event) || []) {
    try {
      listener(data);
    } catch (error) {
      console.error(event, error); // one part of the page must not take the others along
    }
  }
}

/* Keep a connection to the board for as long as the page is open. */
export function connect() {
  let wait = kFirstWait;

  const attempt = async () => {
    try {
      description = await exchange('GET', '/description');
      const board = await request('board');
      const events = socket('/events');
      events.onopen = () => {
        wait = kFirstWait;
        events.send(JSON.stringify({subscribe: ['board', 'state', 'refusal', 'recorded']}));
        emit('link', {up: true});
        emit('board', board);
        request('state').then((state) => emit('state', state), () => {});
      };
      events.onmessage = (message) => {
        const {event, data} = JSON.parse(message.data);
        if (event) emit(event, data);
      };
      events.onclose = () => again('');
    } catch (error) {
      again(error instanceof RequestError ? error.code : '');
    }
  };
  const again = (code) => {
    emit('link', {up: false, code});
    setTimeout(attempt, wait);
    wait = Math.min(wait * 1.6, kLongestWait);
  };
  attempt();
}
