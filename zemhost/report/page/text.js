// Texts and figures as the page shows them, and the one way by which they come into the page.

// What could steer or reorder a line: control characters, marks and overrides of direction, separators of lines, and
// halves of surrogate pairs that stand alone.
const unseen = /[\0-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069\ufeff\ufff9-\ufffb]|\p{Surrogate}/gu;

// The text with each of these made visible: control characters as their pictures, others as their number.
function shown(text) {
  return text.replace(unseen, (c) => {
    const code = c.codePointAt(0);
    if (code < 0x20) return String.fromCharCode(0x2400 + code);
    return `[U+${code.toString(16).toUpperCase().padStart(4, '0')}]`;
  });
}

// An element with attributes, custom properties of style ('--x') and listeners ('onclick'), and with children: elements,
// or texts. No text reaches the page in another way, so that none is ever read as markup.
function make(name, settings, ...children) {
  const node = document.createElement(name);
  for (const [key, value] of Object.entries(settings ?? {})) {
    if (value === null || value === undefined || value === false) continue;
    if (key.startsWith('--')) node.style.setProperty(key, value);
    else if (typeof value === 'function') node.addEventListener(key.slice(2), value);
    else node.setAttribute(key, value === true ? '' : shown(String(value)));
  }
  node.append(...children.filter((child) => child !== null)
    .map((child) => (child instanceof Node ? child : shown(String(child)))));
  return node;
}

// A text of the library inside a sentence of the page: its direction stays its own.
function isolated(text) {
  return make('bdi', null, text);
}

// The text as an address can hold it: a lone half of a surrogate pair cannot stand in one.
function wellFormed(text) {
  return text.replace(/\p{Surrogate}/gu, '\ufffd');
}

// The text in a form in which differences of case, accents and width have gone.
function folded(text) {
  if (/^[\0-\x7f]*$/.test(text)) return text.toLowerCase();
  return text.normalize('NFKD').replace(/[\u0300-\u036f]/g, '').toLowerCase();
}

const numberFormat = new Intl.NumberFormat('en');
const collator = new Intl.Collator('en', { numeric: true });

function countText(value) {
  return numberFormat.format(value);
}

// "1 song", "2 songs".
function countOf(value, word) {
  return `${countText(value)} ${word}${value === 1 ? '' : 's'}`;
}

// Seconds as 3:07 or 1:02:03.
function timeText(seconds) {
  const two = (value) => String(value).padStart(2, '0');
  const whole = Math.round(seconds);
  const hours = Math.floor(whole / 3600);
  const minutes = Math.floor(whole / 60) % 60;
  if (hours === 0) return `${minutes}:${two(whole % 60)}`;
  return `${countText(hours)}:${two(minutes)}:${two(whole % 60)}`;
}

// Seconds in words that suit a sum: "3 h 44 min", "12 days".
function durationText(seconds) {
  const minutes = Math.round(seconds / 60);
  if (minutes < 60) return `${minutes} min`;
  if (minutes < 60 * 72) return `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
  return `${countText(Math.round(minutes / 1440))} days`;
}

// Bytes as 2.2 kB or 31 MB, in powers of 1000.
function sizeText(bytes) {
  const units = ['B', 'kB', 'MB', 'GB', 'TB'];
  let unit = 0;
  let value = bytes;
  while (unit < units.length - 1 && value >= 999.5) {
    value /= 1000;
    unit++;
  }
  return `${unit > 0 && value < 99.95 ? value.toFixed(1) : Math.round(value)} ${units[unit]}`;
}

// A number of days since 1970-01-01 as 2006-03-12.
function dayText(days) {
  const date = new Date(days * 86400000);
  return Number.isNaN(date.getTime()) ? '' : date.toISOString().slice(0, 10);
}

const monthNames = ['January', 'February', 'March', 'April', 'May', 'June', 'July', 'August', 'September', 'October',
  'November', 'December'];

// "2006-03" as March 2006; another text as it is.
function monthText(month) {
  const parts = /^(\d+)-(\d\d)$/.exec(month);
  return parts && monthNames[parts[2] - 1] ? `${monthNames[parts[2] - 1]} ${parts[1]}` : month;
}

// "2026-11-22T10:00:00" as 22 November 2026, 10:00; another text as it is.
function momentText(moment) {
  const parts = /^(\d+)-(\d\d)-(\d\d)T(\d\d:\d\d)/.exec(moment);
  return parts && monthNames[parts[2] - 1]
    ? `${Number(parts[3])} ${monthNames[parts[2] - 1]} ${parts[1]}, ${parts[4]}` : moment;
}

function starsOf(rating) {
  return Math.min(5, Math.max(0, Math.round(rating / 20)));
}

function starsText(stars) {
  return '\u2605'.repeat(stars) + '\u2606'.repeat(5 - stars);
}
