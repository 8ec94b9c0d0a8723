// All that is known of one song, in a dialog.

const linked = { artist: 'artist', album: 'album', genre: 'genre', composer: null, kind: 'kind' };

function factOf(column, song) {
  const text = cellText(column, song);
  if (text === '' || column.key === 'title') return [];
  const filter = linked[column.key];
  const value = filter ? link(linkTo('songs', { [filter]: wellFormed(text) }), text, { onclick: closeSong })
    : isolated(text);
  const label = column.key === 'bit_rate' ? 'Bit rate' : column.label;
  return [make('dt', null, label), make('dd', null, value, column.key === 'bit_rate' ? ' kbit/s' : '')];
}

function closeSong() {
  document.getElementById('song').close();
}

function listsWith(song) {
  return [...library.playlists.entries()].filter(([, list]) => list.kind !== 'library' && list.songs.includes(song));
}

function showSong(song) {
  const dialog = document.getElementById('song');
  const facts = columns.flatMap((column) => factOf(column, song));
  const lists = listsWith(song).map(([at, list]) => make('li', null,
    link(linkTo('playlists', { list: at }), list.name, { onclick: closeSong })));
  if (lists.length > 0) facts.push(make('dt', null, 'Playlists'), make('dd', null, make('ul', null, ...lists)));
  const flags = Math.max(0, numberOf('flags', song));
  const health = Object.values(healthWords).filter((_, bit) => flags & (1 << bit));
  if (health.length > 0) facts.push(make('dt', null, 'Health'), make('dd', null, health.join(', ')));
  const album = numberOf('album_of', song);
  dialog.replaceChildren(
    make('button', { type: 'button', class: 'close', 'aria-label': 'Close', onclick: closeSong }, '\u00d7'),
    make('div', { class: 'heading' }, album >= 0 ? coverOf(album) : null,
      make('h2', { id: 'song-title' }, isolated(titleOf(song)))),
    make('dl', { class: 'facts' }, ...facts),
  );
  dialog.showModal();
}

// A press beside the dialog closes it.
document.getElementById('song').addEventListener('click', (event) => {
  if (event.target === event.currentTarget) closeSong();
});
