// The control's shortcut menu as a page element: a menu (role "menu", items
// "menuitem") opened at the pointer, with submenus, grayed items shown disabled, and
// the ways a person drives a popup menu: the arrows, Home and End, Enter or Space,
// Escape and Left to close a submenu or the menu, the mouse (hovering opens a
// submenu, a click picks, so does releasing the right button over an item after
// moving onto it); a press anywhere outside closes it and is not passed on.
//
// The menu is modal, as a popup menu is while it tracks: it lies in a transparent
// full-page <dialog> in the top layer, which keeps the rest of the page inert.

export const MENU_STYLE = `
  dialog.menu-layer { position: fixed; inset: 0; width: 100%; height: 100%; max-width: none; max-height: none;
                      margin: 0; padding: 0; border: 0; background: transparent; overflow: hidden; outline: none; }
  dialog.menu-layer::backdrop { background: transparent; }
  [role=menu] { position: fixed; margin: 0; padding: 3px 0; min-width: 120px; background: #fff; color: #1d2430;
                border: 1px solid #a0a6b0; border-radius: 4px; box-shadow: 0 6px 18px rgba(0, 0, 0, .2);
                font: 13px/1.2 system-ui, sans-serif; white-space: nowrap; user-select: none; }
  [role=menuitem] { display: flex; justify-content: space-between; gap: 24px; padding: 4px 12px 4px 20px;
                    cursor: default; outline: none; }
  [role=menuitem][aria-expanded=true] { background: #e6e9ee; }
  [role=menuitem]:focus { background: #3867d6; color: #fff; }
  [role=menuitem][aria-disabled=true] { color: #9aa0a8; }
  [role=menuitem][aria-disabled=true]:focus { background: #e6e9ee; color: #9aa0a8; }
  [role=menuitem][aria-checked=true]::before { content: "\\2713"; position: absolute; margin-left: -14px; }
  [role=menuitem][aria-haspopup]::after { content: "\\25B6"; font-size: 10px; }
  [role=separator] { height: 1px; margin: 3px 0; background: #dde1e6; }
`;

export class PopupMenu {
  #root;
  #onClose;
  #layer = null;
  #menus = [];             // the open menus, the top one first, each {element, items, opener}
  #pointerOnItem = false;  // the pointer has been over an item since the menu opened

  // `onClose(command)` is called once each time an opened menu closes: with the
  // command of the item picked, or 0 when the menu was dismissed.
  constructor(root, onClose) {
    this.#root = root;
    this.#onClose = onClose;
  }

  get isOpen() { return this.#layer !== null; }

  // Opens the menu of `items` (as the engine describes them: {text, id, grayed,
  // checked, separator, submenu}) with its top-left corner at (left, top) of the
  // viewport, moved to fit inside it.
  open(items, left, top) {
    if (this.isOpen) this.close(0);
    const layer = document.createElement('dialog');
    layer.className = 'menu-layer';
    layer.addEventListener('keydown', (event) => this.#key(event));
    layer.addEventListener('cancel', (event) => event.preventDefault());  // Escape: see #key
    layer.addEventListener('pointerdown', (event) => {
      if (!event.target.closest('[role=menu]')) {
        event.preventDefault();
        this.close(0);
      }
    });
    layer.addEventListener('contextmenu', (event) => event.preventDefault());
    layer.addEventListener('pointerup', (event) => {
      // A popup menu opened by the right button picks the item the button is let go on.
      if (event.button === 2 && this.#pointerOnItem) this.#activate(event.target.closest('[role=menuitem]'), false);
    });
    this.#root.append(layer);
    this.#layer = layer;
    this.#pointerOnItem = false;
    layer.showModal();
    this.#openMenu(items, left, top, null);
    this.#focusItem(this.#menus[0], 0);
  }

  // Closes the menu and whatever submenu is open; `command` is what it closed with.
  close(command) {
    if (!this.isOpen) return;
    const layer = this.#layer;
    this.#layer = null;
    this.#menus = [];
    layer.close();
    layer.remove();
    this.#onClose(command);
  }

  #openMenu(items, left, top, opener) {
    const element = document.createElement('div');
    element.setAttribute('role', 'menu');
    element.setAttribute('aria-orientation', 'vertical');
    if (opener) element.setAttribute('aria-label', opener.textContent);
    const entries = [];
    for (const item of items) {
      if (item.separator) {
        const line = document.createElement('div');
        line.setAttribute('role', 'separator');
        element.append(line);
        continue;
      }
      const entry = document.createElement('div');
      entry.setAttribute('role', 'menuitem');
      entry.tabIndex = -1;
      entry.textContent = item.text;
      if (item.grayed) entry.setAttribute('aria-disabled', 'true');
      if (item.checked) entry.setAttribute('aria-checked', 'true');
      if (item.submenu) {
        entry.setAttribute('aria-haspopup', 'menu');
        entry.setAttribute('aria-expanded', 'false');
      }
      entry.addEventListener('pointerenter', () => {
        this.#pointerOnItem = true;
        const level = this.#menus.findIndex((menu) => menu.element === element);
        this.#closeMenusAfter(level);
        entry.focus();
        if (item.submenu && !item.grayed) this.#openSubmenu(entry, false);
      });
      entry.addEventListener('click', () => this.#activate(entry, false));
      entries.push({ element: entry, item });
      element.append(entry);
    }
    this.#layer.append(element);
    // Placed at the point, or on its other side where the page has no room.
    const { width, height } = element.getBoundingClientRect();
    const right = opener ? opener.getBoundingClientRect().left - width : left - width;
    const x = left + width <= innerWidth ? left : Math.max(0, right);
    const y = top + height <= innerHeight ? top : Math.max(0, innerHeight - height);
    element.style.left = `${x}px`;
    element.style.top = `${y}px`;
    this.#menus.push({ element, items: entries, opener });
  }

  // Opens the submenu of `entry` beside it, focusing its first item when asked to.
  #openSubmenu(entry, focusFirst) {
    const level = this.#menus.findIndex((menu) => menu.items.some((e) => e.element === entry));
    const { item } = this.#menus[level].items.find((e) => e.element === entry);
    if (this.#menus[level + 1]?.opener !== entry) {
      this.#closeMenusAfter(level);
      const box = entry.getBoundingClientRect();
      entry.setAttribute('aria-expanded', 'true');
      this.#openMenu(item.submenu, box.right - 2, box.top - 4, entry);
    }
    if (focusFirst) this.#focusItem(this.#menus[level + 1], 0);
  }

  #closeMenusAfter(level) {
    while (this.#menus.length > level + 1) {
      const menu = this.#menus.pop();
      menu.opener.setAttribute('aria-expanded', 'false');
      menu.element.remove();
    }
  }

  #focusItem(menu, index) {
    const { items } = menu;
    if (items.length > 0) items[(index + items.length) % items.length].element.focus();
  }

  // Picks an item: a command closes the menu with it, a submenu opens; grayed items
  // do nothing.
  #activate(entry, fromKeyboard) {
    if (!entry || entry.getAttribute('aria-disabled') === 'true') return;
    const found = this.#menus.flatMap((menu) => menu.items).find((e) => e.element === entry);
    if (!found) return;
    if (found.item.submenu) this.#openSubmenu(entry, fromKeyboard);
    else this.close(found.item.id);
  }

  #key(event) {
    event.preventDefault();
    event.stopPropagation();
    const level = Math.max(0, this.#menus.findIndex((menu) => menu.element.contains(event.target)));
    const menu = this.#menus[level];
    const at = menu.items.findIndex((e) => e.element === event.target);
    switch (event.key) {
      case 'ArrowDown': this.#focusItem(menu, at + 1); break;
      case 'ArrowUp': this.#focusItem(menu, at < 0 ? -1 : at - 1); break;
      case 'Home': this.#focusItem(menu, 0); break;
      case 'End': this.#focusItem(menu, -1); break;
      case 'ArrowRight':
        if (at >= 0 && menu.items[at].item.submenu) this.#activate(menu.items[at].element, true);
        break;
      case 'ArrowLeft':
      case 'Escape':
        if (level > 0) {
          const { opener } = menu;
          this.#closeMenusAfter(level - 1);
          opener.focus();
        } else if (event.key === 'Escape') {
          this.close(0);
        }
        break;
      case 'Enter':
      case ' ':
        if (at >= 0) this.#activate(menu.items[at].element, true);
        break;
      default:
        break;
    }
  }
}
