// The head of the page, and the view that the address names.

const views = {
  songs: { label: 'Songs', open: (main) => new SongsView(main) },
  albums: { label: 'Albums', open: albumsView },
  artists: { label: 'Artists', open: artistsView },
  playlists: { label: 'Playlists', open: playlistsView },
  podcasts: { label: 'Podcasts', open: podcastsView, hidden: library.podcasts.length === 0 },
  charts: { label: 'Charts', open: (main) => new ChartsView(main) },
  player: { label: 'Player', open: (main) => new HealthView(main) },
};

function showHead() {
  const fact = (name) => library.facts.find(([label]) => label === name)?.[1] ?? '';
  const { totals } = library;
  document.getElementById('title').append(isolated(library.title || 'Music library'));
  document.getElementById('summary').append(...[fact('Model'), countOf(totals.songs, 'song'),
    countOf(totals.playlists, 'playlist'), timeText(totals.duration), sizeText(totals.size)]
    .filter((text) => text !== '').map((text) => make('span', null, isolated(text))));
  document.getElementById('made').append(`Made on ${momentText(library.made)} by `, isolated(library.program));
  document.getElementById('views').append(...Object.entries(views).filter(([, { hidden }]) => !hidden)
    .map(([key, { label }]) => make('li', null, make('a', { href: linkTo(key), 'data-view': key }, label))));
}

let shownView = { name: '', view: null };

// A view is built anew when another is named, or another list in it; else it follows the address.
function showAddress() {
  const { view, params } = readAddress();
  const key = Object.hasOwn(views, view) ? view : 'songs';
  const name = `${key} ${params.get('list') ?? ''} ${params.get('album') ?? ''}`;
  if (key === 'songs' ? !shownView.name.startsWith('songs ') : shownView.name !== name) {
    const main = document.getElementById('main');
    main.className = '';
    main.replaceChildren();
    main.scrollTop = 0;
    shownView = { name, view: views[key].open(main, params) };
    for (const one of document.querySelectorAll('#views a')) {
      if (one.dataset.view === key) one.setAttribute('aria-current', 'page');
      else one.removeAttribute('aria-current');
    }
  }
  shownView.view.update(params);
}

showHead();
showAddress();
addEventListener('hashchange', showAddress);
addEventListener('beforeprint', () => shownView.view.print(true));
addEventListener('afterprint', () => shownView.view.print(false));
