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

// Milliseconds as 3:07 or 1:02:03, from 24 hours on with days: 2 days 3:04:05.
function timeText(milliseconds) {
  const two = (value) => String(value).padStart(2, '0');
  const whole = Math.floor(milliseconds / 1000);
  const days = Math.floor(whole / 86400);
  const hours = Math.floor(whole / 3600) % 24;
  const minutes = Math.floor(whole / 60) % 60;
  if (days > 0) return `${countOf(days, 'day')} ${hours}:${two(minutes)}:${two(whole % 60)}`;
  if (hours > 0) return `${hours}:${two(minutes)}:${two(whole % 60)}`;
  return `${minutes}:${two(whole % 60)}`;
}

// Milliseconds in words that suit a sum: "3 h 44 min", "12 days".
function durationText(milliseconds) {
  const minutes = Math.round(milliseconds / 60000);
  if (minutes < 60) return `${minutes} min`;
  if (minutes < 60 * 72) return `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
  return `${countText(Math.round(minutes / 1440))} days`;
}

// Bytes as 449 B, 2.2 kB, 31.0 MB or 1.25 GB. The limits are where rounding would reach the next unit.
function sizeText(bytes) {
  if (bytes < 1000) return `${bytes} B`;
  if (bytes < 999950) return `${(bytes / 1e3).toFixed(1)} kB`;
  if (bytes < 999950000) return `${(bytes / 1e6).toFixed(1)} MB`;
  return `${(bytes / 1e9).toFixed(2)} GB`;
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
