// Light or dark, as Cockpit's shell is set to; it tells its frames by localStorage.
function apply(): void {
    const style = localStorage.getItem("shell:style") ?? "auto";
    const dark = style === "dark" || (style === "auto" && matchMedia("(prefers-color-scheme: dark)").matches);
    document.documentElement.classList.toggle("pf-v6-theme-dark", dark);
}

export function followTheme(): void {
    apply();
    window.addEventListener("storage", event => event.key === "shell:style" && apply());
    window.addEventListener("cockpit-style", apply);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", apply);
}
