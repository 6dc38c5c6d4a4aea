// Light or dark theme. Follows the system until the user switches with the button or the key t.

const systemDark = window.matchMedia("(prefers-color-scheme: dark)");
let chosenTheme = null;

function showTheme() {
  document.documentElement.dataset.theme = chosenTheme || (systemDark.matches ? "dark" : "light");
}

function switchTheme() {
  chosenTheme = document.documentElement.dataset.theme === "dark" ? "light" : "dark";
  showTheme();
}

function themeButton() {
  return h(
    "button",
    {type: "button", id: "theme", title: "Light or dark (t)", onclick: switchTheme},
    "◐ Theme",
  );
}

systemDark.addEventListener("change", showTheme);
showTheme();
