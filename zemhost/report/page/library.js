// The library that the page carries, and the columns in which its songs are shown.

const wordColumns = ['artist', 'album', 'album_artist', 'genre', 'composer', 'kind', 'media', 'comment'];
const unknown = -1;

function numbersOf(column) {
  const numbers = new Float64Array(column.length);
  for (let at = 0; at < numbers.length; at++) numbers[at] = column[at] ?? unknown;
  return numbers;
}

// The library of the page's data. Numbers stand in typed arrays, unknown ones as -1; a column that is unknown for every
// song is null.
function readLibrary(text) {
  const data = JSON.parse(text);
  const songs = {};
  for (const [name, column] of Object.entries(data.songs)) {
    songs[name] = name === 'title' || column === null ? column : numbersOf(column);
  }
  return { ...data, songs, count: songs.title.length, order: new Map() };
}

const library = readLibrary(document.getElementById('library').textContent);
const songs = library.songs;
// The text is in the objects now: a second copy of it would only take room.
document.getElementById('library').textContent = '';

// The text of a column of words, empty where it is unknown.
function wordOf(column, song) {
  return songs[column] === null ? '' : library.words[column][songs[column][song]];
}

function titleOf(song) {
  return songs.title[song] || 'Untitled';
}

function numberOf(column, song) {
  return songs[column] === null ? unknown : songs[column][song];
}

// "Title by Artist".
function songName(song) {
  const artist = wordOf('artist', song);
  return artist ? `${titleOf(song)} by ${artist}` : titleOf(song);
}

function sumOf(column, list) {
  let sum = 0;
  for (const song of list) if (song >= 0) sum += Math.max(0, numberOf(column, song));
  return sum;
}

const positive = (format) => (value) => (value > 0 ? format(value) : '');
const known = (format) => (value) => (value >= 0 ? format(value) : '');

// `text` makes the text of a number; a column without it holds texts. `extra` columns are left out on paper. Widths are in
// rem, and the least of columns that grow.
const allColumns = [
  { key: 'title', label: 'Title', width: 16, grows: true },
  { key: 'artist', label: 'Artist', width: 11, grows: true },
  { key: 'album', label: 'Album', width: 11, grows: true },
  { key: 'duration', label: 'Time', width: 5, text: positive(timeText) },
  { key: 'genre', label: 'Genre', width: 7, grows: true },
  { key: 'year', label: 'Year', width: 4.2, text: positive(String) },
  { key: 'rating', label: 'Stars', width: 6, text: positive((value) => starsText(starsOf(value))),
    spoken: (value) => `${countOf(starsOf(value), 'star')} of 5` },
  { key: 'plays', label: 'Plays', width: 4.6, text: known(countText) },
  { key: 'skips', label: 'Skips', width: 4.6, text: known(countText), extra: true },
  { key: 'last_played', label: 'Last played', width: 7.4, text: known(dayText), extra: true },
  { key: 'added', label: 'Added', width: 7.4, text: known(dayText), extra: true },
  { key: 'track', label: 'Track', width: 4.6, text: positive(countText), extra: true },
  { key: 'disc', label: 'Disc', width: 4, text: positive(countText), extra: true },
  { key: 'bit_rate', label: 'kbit/s', width: 5, text: positive(countText), extra: true },
  { key: 'size', label: 'Size', width: 6, text: positive(sizeText), extra: true },
  { key: 'kind', label: 'Kind', width: 9, grows: true, extra: true },
  { key: 'media', label: 'Media', width: 7, extra: true },
  { key: 'album_artist', label: 'Album artist', width: 9, grows: true, extra: true },
  { key: 'composer', label: 'Composer', width: 9, grows: true, extra: true },
  { key: 'comment', label: 'Comment', width: 9, grows: true, extra: true },
];

// A column that would be empty for every song is not shown.
const columns = allColumns.filter((column) => {
  if (column.key === 'title') return true;
  const values = songs[column.key];
  return values !== null && (column.text ? values.some((value) => column.text(value) !== '')
    : values.some((word) => library.words[column.key][word] !== ''));
});

function cellText(column, song) {
  if (column.key === 'title') return titleOf(song);
  return column.text ? column.text(songs[column.key][song]) : wordOf(column.key, song);
}

// For each text its place in the order of an English dictionary.
function ranksOf(texts) {
  const sorted = [...texts.keys()].sort((a, b) => collator.compare(texts[a], texts[b]));
  const ranks = new Float64Array(texts.length);
  sorted.forEach((text, rank) => { ranks[text] = rank; });
  return ranks;
}

// For each song the number by which a column is sorted; Infinity where the column says nothing, so that such songs come
// last either way.
function sortKeys(key, direction) {
  const keys = new Float64Array(library.count);
  if (key === 'title') {
    const texts = [...new Set(songs.title)];
    const ranks = ranksOf(texts);
    const places = new Map(texts.map((text, at) => [text, ranks[at]]));
    return keys.map((_, song) => (songs.title[song] ? places.get(songs.title[song]) * direction : Infinity));
  }
  const values = songs[key];
  if (values === null) return keys;
  if (wordColumns.includes(key)) {
    const words = library.words[key];
    const ranks = ranksOf(words);
    return keys.map((_, song) => (words[values[song]] ? ranks[values[song]] * direction : Infinity));
  }
  const { text } = allColumns.find((column) => column.key === key);
  return keys.map((_, song) => (text(values[song]) === '' ? Infinity : values[song] * direction));
}

function sortedSongs(compare) {
  return Uint32Array.from({ length: library.count }, (_, song) => song).sort(compare);
}

// All songs by artist, album, disc and track.
function usualOrder() {
  const artist = sortKeys('artist', 1);
  const album = sortKeys('album', 1);
  const place = Float64Array.from({ length: library.count },
    (_, song) => Math.max(0, numberOf('disc', song)) * 65536 + Math.max(0, numberOf('track', song)));
  return sortedSongs((a, b) => (artist[a] - artist[b]) || (album[a] - album[b]) || (place[a] - place[b]) || (a - b));
}

// All songs in the order of a sort: '' the usual one, 'year' by a column from its least, '-year' from its greatest. An
// order is kept, since the next search asks for it again.
function orderOf(sort) {
  if (!library.order.has(sort)) {
    library.order.set(sort, sort === '' ? usualOrder() : orderByColumn(sort));
  }
  return library.order.get(sort);
}

function orderByColumn(sort) {
  const keys = sortKeys(sort.replace('-', ''), sort.startsWith('-') ? -1 : 1);
  const places = new Uint32Array(library.count);
  orderOf('').forEach((song, place) => { places[song] = place; });
  return sortedSongs((a, b) => (keys[a] - keys[b]) || (places[a] - places[b]));
}

// The columns by which one can sort; anything else in an address means the usual order.
function knownSort(sort, more = []) {
  const key = (sort ?? '').replace(/^-/, '');
  return more.includes(key) || columns.some((column) => column.key === key) ? sort : '';
}
