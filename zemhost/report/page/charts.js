// Charts of the library. Each is a table, in which every row has a bar; or, where the order of the groups matters, columns
// with a table beneath. A bar is a link to the songs it stands for.
//
// Written here because no packaged library fits: those that draw on a canvas say nothing to those who cannot see it and give
// the keyboard nothing to reach, the others bring a language of their own that a policy without eval forbids, or are
// many times as large as these pages.

const measures = {
  songs: { label: 'Songs', of: () => 1, text: countText },
  time: { label: 'Time', of: (song) => numberOf('duration', song), text: timeText },
  size: { label: 'Size', of: (song) => numberOf('size', song), text: sizeText, needs: 'size' },
  plays: { label: 'Plays', of: (song) => numberOf('plays', song), text: countText, needs: 'plays' },
  listened: {
    label: 'Time played',
    of: (song) => Math.max(0, numberOf('plays', song)) * Math.max(0, numberOf('duration', song)),
    text: timeText,
    needs: 'plays',
  },
};

// The sums of a measure by group: pairs of group and sum. `groupOf(song)` gives null for a song that has no group.
function sums(groupOf, measure, kept) {
  const found = new Map();
  for (let song = 0; song < library.count; song++) {
    if (kept && !kept(song)) continue;
    const group = groupOf(song);
    if (group === null) continue;
    found.set(group, (found.get(group) ?? 0) + Math.max(0, measure.of(song)));
  }
  return [...found].filter(([, value]) => value > 0);
}

const fewBars = 10;

function barRow({ text, hash, value }, greatest, format) {
  return make('tr', null,
    make('th', { scope: 'row' }, link(hash, text)),
    make('td', { class: 'bar' }, make('a', {
      href: hash, tabindex: -1, 'aria-hidden': 'true', '--part': greatest > 0 ? value / greatest : 0,
    })),
    make('td', { class: 'number' }, format(value)));
}

// A table of bars. Of more than ten, the others come when they are asked for.
function barTable(items, format, label, heads) {
  const greatest = items.reduce((most, { value }) => Math.max(most, value), 0);
  const body = make('tbody');
  const table = make('table', { class: 'bars', 'aria-label': label },
    make('thead', { class: 'hidden' }, make('tr', null, make('th', { scope: 'col' }, heads[0]),
      make('td'), make('th', { scope: 'col' }, heads[1]))), body);
  body.append(...items.slice(0, fewBars).map((item) => barRow(item, greatest, format)));
  if (items.length <= fewBars) return [table];
  const button = make('button', {
    type: 'button',
    class: 'all',
    onclick: () => {
      button.remove();
      body.replaceChildren();
      new Growing(body, items.length, (at) => barRow(items[at], greatest, format));
      body.querySelector('a').focus();
    },
  }, `Show all ${countText(items.length)}`);
  return [table, button];
}

// Columns from left to right, for groups that have an order. Their table holds the same links for the keyboard.
function columnChart(items, format, label, heads) {
  const greatest = items.reduce((most, { value }) => Math.max(most, value), 0);
  const every = Math.ceil(items.length / 6);
  const columns = items.map(({ text, hash, value }, at) => make('a', {
    href: hash, tabindex: -1, title: `${text}: ${format(value)}`, '--part': greatest > 0 ? value / greatest : 0,
  }, make('i'), make('span', null, at % every === 0 ? text : '')));
  return [make('div', { class: 'columns', 'aria-hidden': 'true' }, ...columns),
    make('details', null, make('summary', null, 'As a table'), ...barTable(items, format, label, heads))];
}

// A chart: its name, its groups, and how they are drawn.
function chart(title, items, format, heads, draw = barTable) {
  if (items.length === 0) return null;
  return make('section', { class: 'chart' }, make('h3', null, title), ...draw(items, format, title, heads));
}

function wordChart(title, column, measure) {
  const words = library.words[column];
  if (songs[column] === null) return null;
  const items = sums((song) => songs[column][song], measure)
    .map(([word, value]) => ({
      text: words[word] || '(none)', hash: linkTo('songs', { [column]: wellFormed(words[word]) }), value,
    })).sort((a, b) => b.value - a.value);
  return chart(title, items, measure.text, [title, measure.label]);
}

function albumChart(title, measure) {
  const items = sums((song) => (numberOf('album_of', song) < 0 ? null : numberOf('album_of', song)), measure)
    .map(([album, value]) => ({
      text: library.albums[album].name || 'No album', hash: linkTo('albums', { album }), value,
    })).sort((a, b) => b.value - a.value);
  return chart(title, items, measure.text, [title, measure.label]);
}

// `steps(first, last)` lists the groups from the first to the last, the empty ones too.
function orderedChart(title, groupOf, measure, { steps, text, hash }) {
  const found = new Map(sums(groupOf, measure));
  if (found.size === 0) return null;
  const groups = [...found.keys()].sort((a, b) => (a < b ? -1 : 1));
  const items = (steps ? steps(groups[0], groups.at(-1)) : groups)
    .map((group) => ({ text: text(group), hash: hash(group), value: found.get(group) ?? 0 }));
  return chart(title, items, measure.text, [title, measure.label], columnChart);
}

const mostColumns = 400;

function range(from, to, step) {
  const all = [];
  for (let at = from; at <= to && all.length < mostColumns; at += step) all.push(at);
  return all;
}

// A month's number, counted from the year 0; and its text.
const monthNumber = (text) => Number(text.slice(0, 4)) * 12 + Number(text.slice(5)) - 1;
const monthKey = (month) => [Math.floor(month / 12), (month % 12) + 1]
  .map((part, at) => String(part).padStart(at ? 2 : 4, '0')).join('-');

function addedChart(measure) {
  const spans = (first, last) => range(monthNumber(first), monthNumber(last), 1).map(monthKey);
  return orderedChart('Added by month', (song) => monthOf(numberOf('added', song)) || null, measure,
    { steps: spans, text: (month) => month, hash: (month) => linkTo('songs', { added: month }) });
}

function yearCharts(measure) {
  const decadeOf = (song) => (numberOf('year', song) > 0 ? Math.floor(numberOf('year', song) / 10) * 10 : null);
  const yearOf = (song) => (numberOf('year', song) > 0 ? numberOf('year', song) : null);
  return [
    orderedChart('Decades', decadeOf, measure, {
      steps: (from, to) => range(from, to, 10),
      text: (decade) => `${decade}s`,
      hash: (decade) => linkTo('songs', { year: `${decade}s` }),
    }),
    orderedChart('Years', yearOf, measure, {
      steps: (from, to) => range(from, to, 1), text: String, hash: (year) => linkTo('songs', { year }),
    }),
  ];
}

function starsChart(measure) {
  if (songs.rating === null) return null;
  return orderedChart('Stars', (song) => starsOf(Math.max(0, numberOf('rating', song))), measure, {
    steps: () => [0, 1, 2, 3, 4, 5],
    text: (stars) => (stars === 0 ? 'none' : `${stars} \u2605`),
    hash: (stars) => linkTo('songs', { stars }),
  });
}

function rateChart(measure) {
  const groupOf = (song) => (numberOf('bit_rate', song) > 0 ? rateOf(numberOf('bit_rate', song)) : null);
  return orderedChart('Bit rates', groupOf, measure, { text: rateText, hash: (rate) => linkTo('songs', { rate }) });
}

// The songs of which a column says most.
function songChart(title, column, format, heads) {
  const items = [...orderOf(`-${column}`).slice(0, 100)].filter((song) => numberOf(column, song) > 0)
    .map((song) => ({ text: songName(song), hash: linkTo('songs', { song }), value: numberOf(column, song) }));
  return chart(title, items, format, heads);
}

function neverPlayedChart() {
  if (songs.plays === null) return null;
  const artists = library.words.artist;
  const items = sums((song) => numberOf('artist', song), measures.songs, (song) => numberOf('plays', song) <= 0)
    .map(([artist, value]) => ({
      text: artists[artist] || '(none)',
      hash: linkTo('songs', { plays: 'never', artist: wellFormed(artists[artist]) }),
      value,
    })).sort((a, b) => b.value - a.value);
  const section = chart('Never played', items, countText, ['Artist', 'Songs']);
  const all = items.reduce((sum, { value }) => sum + value, 0);
  section?.append(make('p', null,
    make('a', { href: linkTo('songs', { plays: 'never' }) }, `All ${countOf(all, 'song')} never played`)));
  return section;
}

class ChartsView {
  constructor(main) {
    const choices = Object.entries(measures).filter(([, { needs }]) => !needs || songs[needs] !== null)
      .map(([key, { label }]) => [key, label]);
    this.measure = new Choice('Measure', choices, (value) => press({ measure: value }));
    this.charts = make('div', { class: 'charts' });
    main.append(make('h2', { class: 'hidden' }, 'Charts'), make('form', { class: 'tools' }, this.measure.node),
      this.charts);
  }

  update(params) {
    const asked = params.get('measure');
    const key = this.measure.values.includes(asked) ? asked : 'songs';
    this.measure.choose(key);
    const measure = measures[key];
    this.charts.replaceChildren(...[
      addedChart(measure),
      wordChart('Artists', 'artist', measure),
      albumChart('Albums', measure),
      wordChart('Genres', 'genre', measure),
      ...yearCharts(measure),
      starsChart(measure),
      rateChart(measure),
      wordChart('Kinds', 'kind', measure),
      songChart('Most played', 'plays', countText, ['Song', 'Plays']),
      neverPlayedChart(),
      songChart('Most skipped', 'skips', countText, ['Song', 'Skips']),
      songChart('Longest', 'duration', timeText, ['Song', 'Time']),
    ].filter((section) => section !== null));
  }

  print() {}
}
