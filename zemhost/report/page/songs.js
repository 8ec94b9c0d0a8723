// The view of all songs: a search, filters that combine, and the table.

// The values of a filter's field, as pairs with their texts. The first leaves every song.
function wordChoices(column) {
  const ranks = ranksOf(library.words[column]);
  const used = new Set(songs[column] ?? []);
  const words = [...library.words[column].keys()].filter((word) => used.has(word)).sort((a, b) => ranks[a] - ranks[b]);
  return words.map((word) => [wellFormed(library.words[column][word]), library.words[column][word] || '(none)']);
}

function yearChoices() {
  const years = [...new Set(songs.year ?? [])].filter((year) => year > 0).sort((a, b) => b - a);
  const choices = [];
  for (const year of years) {
    const decade = `${Math.floor(year / 10)}0s`;
    if (!choices.some(([value]) => value === decade)) choices.push([decade, decade]);
    choices.push([String(year), `\u2003${year}`]);
  }
  if (songs.year?.some((year) => year <= 0)) choices.push(['0', '(none)']);
  return choices;
}

function choicesOf(key) {
  switch (key) {
    case 'year': return yearChoices();
    case 'stars': return [5, 4, 3, 2, 1, 0].map((stars) => [String(stars), stars ? starsText(stars) : '(none)']);
    case 'playlist': return library.playlists.map((list, at) => [String(at), list.name || '(no name)']);
    default: return wordChoices(key);
  }
}

// The next sort when the head of a column is pressed: texts begin with the first, figures with the greatest.
function nextSort(sort, key) {
  const column = columns.find((one) => one.key === key);
  const [first, second] = column?.text ? [`-${key}`, key] : [key, `-${key}`];
  return sort === first ? second : first;
}

// Changes the address, and leaves the keyboard where it is.
function press(changes) {
  replaceAddress(changed(changes));
}

class SongsView {
  constructor(main) {
    this.search = searchField('Search', (text) => press({ q: text || null }));
    this.choices = new Map();
    for (const [key, filter] of Object.entries(filters)) {
      if (!filter.field) continue;
      this.choices.set(key, new Choice(filter.label, [[null, 'All']], (value) => press({ [key]: value })));
    }
    // Thousands of artists take longer to list than the songs in view, and can wait until these are seen.
    requestAnimationFrame(() => setTimeout(() => this.fill()));
    this.sort = new Choice('Sort', [[null, 'Artist and album'],
      ...columns.flatMap((column) => [[column.key, column.label], [`-${column.key}`, `${column.label}, reversed`]])],
    (value) => press({ sort: value }));
    this.sort.node.classList.add('sort');
    this.filters = make('details', { class: 'filters', open: matchMedia('(min-width: 46rem)').matches },
      make('summary', null, 'Filters'),
      make('div', { class: 'fields' }, ...[...this.choices.values()].map((choice) => choice.node), this.sort.node));
    this.taken = make('div', { class: 'taken' });
    this.status = new Status();
    this.table = new SongTable({
      label: 'Songs',
      sorted: (key) => press({ sort: nextSort(readAddress().params.get('sort'), key) }),
      opened: showSong,
    });
    main.append(
      make('h2', { class: 'hidden' }, 'Songs'),
      make('form', { class: 'tools', role: 'search', onsubmit: (event) => event.preventDefault() }, this.search.node,
        this.filters),
      make('div', { class: 'line' }, this.status.node, this.taken),
      this.table.node,
    );
    main.classList.add('filled');
  }

  fill() {
    if (this.filled) return;
    this.filled = true;
    for (const [key, choice] of this.choices) choice.add(choicesOf(key));
  }

  update(params) {
    if (this.search.field.value !== (params.get('q') ?? '')) this.search.field.value = params.get('q') ?? '';
    if ([...this.choices.keys()].some((key) => params.has(key))) {
      this.fill();
      this.filters.open = true;  // a filter that is set is seen
    }
    for (const [key, choice] of this.choices) choice.choose(params.get(key));
    const sort = knownSort(params.get('sort'));
    this.sort.choose(sort || null);
    this.showTaken(params);
    const rows = songsOf(params);
    this.table.show(rows, sort);
    const part = rows.length < library.count ? `${countText(rows.length)} of ` : '';
    this.status.say(part + countOf(library.count, 'song'), durationText(sumOf('duration', rows)),
      sizeText(sumOf('size', rows)));
  }

  // The filters that have no field, each with a button that takes it back; and one for all.
  showTaken(params) {
    const keys = Object.keys(filters).filter((key) => params.has(key));
    const buttons = keys.filter((key) => !this.choices.has(key)).map((key) => {
      const { label, text } = filters[key];
      const value = params.get(key);
      return make('button', { type: 'button', onclick: () => this.drop({ [key]: null }) }, `${label}: `,
        isolated(text ? text(value) : value), make('span', { 'aria-hidden': 'true' }, ' \u00d7'),
        make('span', { class: 'hidden' }, ', remove this filter'));
    });
    if (keys.length > 0 || params.has('q')) {
      const none = Object.fromEntries([...Object.keys(filters), 'q'].map((key) => [key, null]));
      buttons.push(make('button', { type: 'button', onclick: () => this.drop(none) }, 'Show all songs'));
    }
    this.taken.replaceChildren(...buttons);
  }

  drop(changes) {
    press(changes);
    this.search.field.focus();
  }

  print(on) {
    this.table.print(on);
  }
}
