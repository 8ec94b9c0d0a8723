// The part of the page's address after '#': which view is shown, and of what. "#songs?genre=Folk&sort=-year"

function linkTo(view, settings) {
  const params = new URLSearchParams();
  for (const [key, value] of Object.entries(settings ?? {})) {
    if (value !== null && value !== undefined) params.set(key, value);
  }
  return joined(view, params);
}

function joined(view, params) {
  const query = params.toString();
  return `#${view}${query ? `?${query}` : ''}`;
}

function readAddress() {
  const [, view, query] = /^#?([^?]*)\??(.*)$/.exec(location.hash);
  return { view, params: new URLSearchParams(query) };
}

// The address with some settings changed, and those that are null taken out.
function changed(changes) {
  const { view, params } = readAddress();
  for (const [key, value] of Object.entries(changes)) {
    if (value === null) params.delete(key);
    else params.set(key, value);
  }
  return joined(view, params);
}

// Changes the address in its place: what is typed letter by letter is one step back, not many.
function replaceAddress(hash) {
  history.replaceState(null, '', hash);
  showAddress();
}
