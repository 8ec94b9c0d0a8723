// Which songs a search and filters leave.

const ratesAt = [0, 96, 128, 160, 192, 256, 320];

// "128" begins the range of bit rates that ends before the next of these.
function rateOf(rate) {
  return rate > 0 ? ratesAt.findLast((start) => start <= rate) : unknown;
}

function rateText(start) {
  const end = ratesAt[ratesAt.indexOf(start) + 1];
  if (end === undefined) return `${start} kbit/s and more`;
  return start === 0 ? `below ${end} kbit/s` : `${start} to ${end - 1} kbit/s`;
}

function monthOf(days) {
  return days >= 0 ? dayText(days).slice(0, 7) : '';
}

const healthWords = { missing: 'File missing', damaged: 'File damaged', duplicate: 'Duplicate' };

// Songs whose word in a column is this text. Two words may be one text in an address.
function byWord(column) {
  return (value) => {
    const wanted = library.words[column].map((word) => wellFormed(word) === value);
    return songs[column] === null ? () => value === '' : (song) => wanted[songs[column][song]];
  };
}

function byYear(value) {
  const decade = /^(\d+)0s$/.exec(value);
  if (decade) return (song) => Math.floor(numberOf('year', song) / 10) === Number(decade[1]);
  const year = Number(value);
  return (song) => Math.max(0, numberOf('year', song)) === year;
}

function inList(list) {
  const inside = new Uint8Array(library.count);
  for (const song of library.playlists[list] ? listSongs(Number(list)) : []) if (song >= 0) inside[song] = 1;
  return (song) => inside[song] === 1;
}

// Every filter an address can name: its label, how its value reads, and what it asks of a song. The first seven have a
// field of their own; the others come from links, and can be taken back.
const filters = {
  artist: { label: 'Artist', field: true, wanted: byWord('artist') },
  album: { label: 'Album', field: true, wanted: byWord('album') },
  genre: { label: 'Genre', field: true, wanted: byWord('genre') },
  year: { label: 'Year', field: true, wanted: byYear },
  kind: { label: 'Kind', field: true, wanted: byWord('kind') },
  stars: {
    label: 'Stars',
    field: true,
    wanted: (value) => (song) => starsOf(Math.max(0, numberOf('rating', song))) === Number(value),
  },
  playlist: { label: 'Playlist', field: true, wanted: inList },
  added: {
    label: 'Added',
    text: monthText,
    wanted: (value) => (song) => monthOf(numberOf('added', song)).startsWith(value),
  },
  rate: {
    label: 'Bit rate',
    text: (value) => rateText(Number(value)),
    wanted: (value) => (song) => rateOf(numberOf('bit_rate', song)) === Number(value),
  },
  plays: {
    label: 'Plays',
    text: (value) => (value === 'never' ? 'never' : 'at least one'),
    wanted: (value) => (song) => (numberOf('plays', song) > 0) === (value !== 'never'),
  },
  skips: { label: 'Skips', text: () => 'at least one', wanted: () => (song) => numberOf('skips', song) > 0 },
  health: {
    label: 'Health',
    text: (value) => healthWords[value] ?? value,
    wanted: (value) => {
      const bit = 1 << Object.keys(healthWords).indexOf(value);
      return (song) => (numberOf('flags', song) & bit) !== 0;
    },
  },
  song: {
    label: 'Song',
    text: (value) => (songs.title[value] === undefined ? value : songName(value)),
    wanted: (value) => (song) => song === Number(value),
  },
};

// What a search looks through: the titles, and each word of the other columns once.
let searched = null;

function searchedTexts() {
  searched ??= {
    titles: songs.title.map(folded),
    words: wordColumns.filter((column) => songs[column] !== null)
      .map((column) => ({ indexes: songs[column], texts: library.words[column].map(folded) })),
    years: songs.year,
  };
  return searched;
}

// Takes out of `kept` the songs that do not have the part of a text in any of their texts.
function search(part, kept) {
  const { titles, words, years } = searchedTexts();
  const found = words.map(({ indexes, texts }) => ({ indexes, has: texts.map((text) => text.includes(part)) }))
    .filter(({ has }) => has.includes(true));
  const year = /^\d{4}$/.test(part) ? Number(part) : Infinity;
  for (let song = 0; song < kept.length; song++) {
    if (kept[song] === 0 || titles[song].includes(part) || years?.[song] === year) continue;
    if (!found.some(({ indexes, has }) => has[indexes[song]])) kept[song] = 0;
  }
}

// The songs that an address leaves, in its order.
function songsOf(params) {
  const kept = new Uint8Array(library.count).fill(1);
  for (const part of folded(params.get('q') ?? '').split(/\s+/)) if (part !== '') search(part, kept);
  for (const [key, filter] of Object.entries(filters)) {
    if (!params.has(key)) continue;
    const wanted = filter.wanted(params.get(key));
    for (let song = 0; song < kept.length; song++) if (kept[song] === 1 && !wanted(song)) kept[song] = 0;
  }
  return orderOf(knownSort(params.get('sort'))).filter((song) => kept[song] === 1);
}
