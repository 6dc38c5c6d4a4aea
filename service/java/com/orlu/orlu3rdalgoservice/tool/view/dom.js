"use strict";
// Helpers for all parts of the page.

const data = JSON.parse(document.getElementById("data").textContent);

// Makes an element: h("p", {class: "faint", onclick: f}, "text", child, [more]). Ignores null children.
function h(name, attributes, ...children) {
  return fill(document.createElement(name), attributes, children);
}

// Makes an SVG element, with arguments as for h().
function s(name, attributes, ...children) {
  return fill(document.createElementNS("http://www.w3.org/2000/svg", name), attributes, children);
}

function fill(element, attributes, children) {
  for (const [key, value] of Object.entries(attributes || {})) {
    if (key.startsWith("on")) element.addEventListener(key.slice(2), value);
    // The page's content security policy forbids style attributes, but not cssText.
    else if (key === "style") element.style.cssText = value;
    else if (value !== null && value !== undefined && value !== false)
      element.setAttribute(key, value === true ? "" : printable(value));
  }
  for (const child of children.flat(2)) {
    if (child === null || child === undefined) continue;
    element.append(child instanceof Node ? child : printable(child));
  }
  return element;
}

// Escapes line separators, characters that change the text direction, and control characters other than tab
// and line feed.
function printable(text) {
  const unsafe = /[\0-\x08\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069]/g;
  return String(text).replace(unsafe, c => "\\u" + c.charCodeAt(0).toString(16).padStart(4, "0"));
}

function plural(count, word) {
  return count + " " + word + (count === 1 ? "" : "s");
}

function milliseconds(value) {
  if (value >= 1000) return (value / 1000).toFixed(2) + " s";
  return value.toFixed(value < 10 ? 2 : 1) + " ms";
}

function bytes(count) {
  return String(count).replace(/\B(?=(\d{3})+$)/g, ",") + " bytes";
}

// Makes a toggle button; aria-pressed holds its state.
function toggle(text, isDown, title, onChange) {
  const button = h("button", {type: "button", "aria-pressed": String(isDown), title}, text);
  button.addEventListener("click", () => onChange(button.getAttribute("aria-pressed") !== "true"));
  return button;
}

function press(button, isDown) {
  button.setAttribute("aria-pressed", String(isDown));
}

// Makes a search field. Whenever the text changes, calls onChange with it, trimmed and in lower case.
function filterField(label, onChange) {
  return h("input", {
    type: "search",
    placeholder: label + "  ( / )",
    "aria-label": label,
    class: "filter",
    oninput: event => onChange(event.target.value.trim().toLowerCase()),
  });
}

// Returns whether the text contains each of the words, which are separated by blanks, in any order.
function matches(text, words) {
  return words === "" || words.split(/\s+/).every(word => text.includes(word));
}

function baseName(path) {
  return path.slice(path.lastIndexOf("/") + 1);
}
