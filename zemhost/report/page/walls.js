// Albums as a wall of covers, and artists as a list.

const members = new Map();

// The songs of each album, or of each word of a column, by its index.
function songsBy(column) {
  if (!members.has(column)) {
    const lists = [];
    songs[column]?.forEach((index, song) => { if (index >= 0) (lists[index] ??= []).push(song); });
    members.set(column, lists);
  }
  return members.get(column);
}

function albumSongs(album) {
  return songsBy('album_of')[album] ?? [];
}

// The groups in the order chosen, and of them those whose text has every part of what is searched.
function chosenGroups(groups, params, orders) {
  const parts = folded(params.get('q') ?? '').split(/\s+/);
  const found = groups.filter(({ text }) => parts.every((part) => text.includes(part)));
  const order = orders[params.get('sort') ?? ''] ?? orders[''];
  return found.sort((a, b) => order.of(b) - order.of(a) || a.rank - b.rank);
}

const groupOrders = {
  '': { label: 'Name', of: () => 0 },
  songs: { label: 'Most songs', of: ({ list }) => list.length },
  time: { label: 'Longest', of: ({ list }) => sumOf('duration', list) },
  plays: { label: 'Most played', of: ({ list }) => sumOf('plays', list) },
  added: { label: 'Newest', of: ({ list }) => list.reduce((most, song) => Math.max(most, numberOf('added', song)), 0) },
};

// A view of groups of songs: a search, an order, and `list`, which `makeElement(group)` fills.
class GroupsView {
  constructor(main, { title, word, groups, list, makeElement }) {
    Object.assign(this, { groups, list, makeElement, word });
    this.search = searchField(`Search ${word}s`, (text) => press({ q: text || null }));
    this.order = new Choice('Order', Object.entries(groupOrders).map(([key, { label }]) => [key || null, label]),
      (value) => press({ sort: value }));
    this.status = new Status();
    main.append(make('h2', { class: 'hidden' }, title),
      make('form', { class: 'tools', role: 'search', onsubmit: (event) => event.preventDefault() }, this.search.node,
        this.order.node),
      make('div', { class: 'line' }, this.status.node), list);
  }

  update(params) {
    if (this.search.field.value !== (params.get('q') ?? '')) this.search.field.value = params.get('q') ?? '';
    this.order.choose(params.get('sort') ?? null);
    const found = chosenGroups([...this.groups], params, groupOrders);
    this.growing?.stop();
    this.list.replaceChildren();
    this.growing = new Growing(this.list, found.length, (at) => this.makeElement(found[at]));
    const part = found.length < this.groups.length ? `${countText(found.length)} of ` : '';
    this.status.say(part + countOf(this.groups.length, this.word));
  }

  print(on) {
    this.growing.print(on);
  }
}

function albumGroups() {
  const ranks = ranksOf(library.albums.map(({ artist, name }) => `${artist}\u0000${name}`));
  return library.albums.map(({ name, artist }, album) => ({
    album, list: albumSongs(album), rank: ranks[album], text: folded(`${name} ${artist}`),
  })).filter(({ list }) => list.length > 0);
}

function albumCard({ album, list }) {
  const { name, artist } = library.albums[album];
  return make('li', null, make('a', { href: linkTo('albums', { album }) }, coverOf(album),
    make('strong', null, isolated(name || 'No album')), make('span', null, isolated(artist)),
    make('small', null, sumText(list))));
}

function albumsView(main, params) {
  if (params.has('album')) return albumView(main, Number(params.get('album')));
  return new GroupsView(main, {
    title: 'Albums', word: 'album', groups: albumGroups(), list: make('ul', { class: 'wall' }), makeElement: albumCard,
  });
}

function albumView(main, album) {
  const facts = library.albums[album];
  if (!facts) return emptyView(main, 'Albums', 'There is no such album.');
  const list = albumSongs(album).sort((a, b) => (numberOf('disc', a) - numberOf('disc', b))
    || (numberOf('track', a) - numberOf('track', b)) || (a - b));
  const years = [...new Set(list.map((song) => numberOf('year', song)).filter((year) => year > 0))].sort();
  return new ListView(main, {
    back: ['albums', 'Albums'],
    title: facts.name || 'No album',
    cover: coverOf(album),
    lines: [facts.artist, years.length > 1 ? `${years[0]} to ${years.at(-1)}` : years.join('')],
    list,
  });
}

function artistGroups() {
  const ranks = ranksOf(library.words.artist);
  return library.words.artist.map((name, artist) => ({
    name, list: songsBy('artist')[artist] ?? [], rank: name ? ranks[artist] : Infinity, text: folded(name),
  })).filter(({ list }) => list.length > 0);
}

function artistRow({ name, list }) {
  const albums = new Set(list.map((song) => numberOf('album_of', song))).size;
  return make('li', null, make('a', { href: linkTo('songs', { artist: wellFormed(name) }) },
    make('strong', null, isolated(name || 'No artist')),
    make('span', null, `${countOf(albums, 'album')} \u00b7 ${sumText(list)}`)));
}

function artistsView(main) {
  return new GroupsView(main, {
    title: 'Artists', word: 'artist', groups: artistGroups(), list: make('ul', { class: 'rows' }), makeElement: artistRow,
  });
}
