// Playlists and podcasts, and one list of songs in its order.

// A view that has nothing to show but a sentence.
function emptyView(main, title, text) {
  main.append(make('h2', null, title), make('p', { class: 'notice' }, text));
  return { update() {}, print() {} };
}

// The rules of a smart list, one a line.
function rulesOf(text) {
  return (text ?? '').split('\n').filter((line) => line !== '')
    .map((line) => make('small', { class: 'rules' }, isolated(line)));
}

// One list: what it is, its rules when it is a smart one, and its songs in their order or sorted.
class ListView {
  constructor(main, { back, title, cover, lines, rules, list }) {
    this.list = Int32Array.from(list);
    this.table = new SongTable({
      label: title,
      position: true,
      sorted: (key) => press({ sort: key === 'order' ? null : nextSort(readAddress().params.get('sort'), key) }),
      opened: showSong,
    });
    main.append(
      make('p', { class: 'back' }, make('a', { href: linkTo(back[0]) }, `\u2039 ${back[1]}`)),
      make('div', { class: 'heading' }, cover ?? null, make('div', null,
        make('h2', null, isolated(title)),
        ...lines.filter((text) => text !== '').map((text) => make('p', null, isolated(text))),
        ...rulesOf(rules),
        make('p', { class: 'status' }, `${sumText(list)} \u00b7 ${sizeText(sumOf('size', list))}`))),
      this.table.node,
    );
    main.classList.add('filled');
  }

  update(params) {
    const sort = knownSort(params.get('sort'));
    this.table.show(sort === '' ? this.list : this.sorted(sort), sort || 'order');
  }

  // A song may stand in a list more than once, and songs that are not known come last.
  sorted(sort) {
    const places = new Uint32Array(library.count);
    orderOf(sort).forEach((song, place) => { places[song] = place; });
    const placeOf = (song) => (song < 0 ? Infinity : places[song]);
    return Int32Array.from(this.list).sort((a, b) => placeOf(a) - placeOf(b) || 0);
  }

  print(on) {
    this.table.print(on);
  }
}

const playlistKinds = {
  library: 'The whole library', playlist: 'Playlist', smart: 'Smart playlist', folder: 'Folder', podcasts: 'Podcasts',
  'on-the-go': 'On-The-Go',
};

// The songs of a playlist in their order. A folder without songs of its own has those of the lists in it, each once.
function listSongs(list) {
  const { kind, songs: own } = library.playlists[list];
  if (kind !== 'folder' || own.length > 0) return own;
  const inside = [...library.playlists.keys()].filter((at) => library.playlists[at].parent === list);
  return [...new Set(inside.flatMap(listSongs))];
}

// Playlists as they stand in their folders: each with the depth at which it does.
function playlistTree() {
  const children = new Map();
  library.playlists.forEach(({ parent }, at) => {
    if (!children.has(parent)) children.set(parent, []);
    children.get(parent).push(at);
  });
  const rows = [];
  const add = (at, depth) => {
    rows.push({ at, depth: Math.min(depth, 8) });
    for (const child of children.get(at) ?? []) add(child, depth + 1);
  };
  for (const at of children.get(null) ?? []) add(at, 0);
  return rows;
}

function playlistRow({ at, depth }) {
  const { name, kind, rules } = library.playlists[at];
  return make('li', { '--depth': depth }, make('a', { href: linkTo('playlists', { list: at }) },
    make('strong', null, isolated(name || 'No name')),
    make('span', null, `${playlistKinds[kind] ?? kind} \u00b7 ${sumText(listSongs(at))}`),
    ...rulesOf(rules)));
}

// A view of things to choose from, one below the other.
class RowsView {
  constructor(main, title, rows, makeRow) {
    const list = make('ul', { class: 'rows' });
    main.append(make('h2', { class: 'hidden' }, title), list);
    this.growing = new Growing(list, rows.length, (at) => makeRow(rows[at]));
  }

  update() {}

  print(on) {
    this.growing.print(on);
  }
}

function playlistsView(main, params) {
  if (!params.has('list')) return new RowsView(main, 'Playlists', playlistTree(), playlistRow);
  const list = library.playlists[params.get('list')];
  if (!list) return emptyView(main, 'Playlists', 'There is no such playlist.');
  return new ListView(main, {
    back: ['playlists', 'Playlists'],
    title: list.name || 'No name',
    lines: [playlistKinds[list.kind] ?? list.kind, list.created === null ? '' : `Made on ${dayText(list.created)}`],
    rules: list.rules,
    list: listSongs(Number(params.get('list'))),
  });
}

function podcastRow({ name, episodes, at }) {
  return make('li', null, make('a', { href: linkTo('podcasts', { list: at }) },
    make('strong', null, isolated(name || 'No name')),
    make('span', null, `${countOf(episodes.length, 'episode')} \u00b7 ${durationText(sumOf('duration', episodes))}`)));
}

function podcastsView(main, params) {
  if (!params.has('list')) {
    const rows = library.podcasts.map((podcast, at) => ({ ...podcast, at }));
    return new RowsView(main, 'Podcasts', rows, podcastRow);
  }
  const podcast = library.podcasts[params.get('list')];
  if (!podcast) return emptyView(main, 'Podcasts', 'There is no such podcast.');
  return new ListView(main, {
    back: ['podcasts', 'Podcasts'], title: podcast.name || 'No name', lines: ['Podcast'], list: podcast.episodes,
  });
}
