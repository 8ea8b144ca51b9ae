// A small element builder, so the views read as the markup they make.
const SVG_NS = "http://www.w3.org/2000/svg";

function build(element, attributes, children) {
    for (const [name, value] of Object.entries(attributes || {})) {
        if (value === undefined || value === null || value === false) continue;
        if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
        else element.setAttribute(name, value === true ? "" : String(value));
    }
    for (const child of children.flat(Infinity)) {
        if (child === undefined || child === null || child === false) continue;
        element.append(child instanceof Node ? child : document.createTextNode(String(child)));
    }
    return element;
}

export const h = (tag, attributes, ...children) => build(document.createElement(tag), attributes, children);
export const svg = (tag, attributes, ...children) => build(document.createElementNS(SVG_NS, tag), attributes, children);

export function replace(element, ...children) {
    element.replaceChildren();
    return build(element, {}, children);
}
