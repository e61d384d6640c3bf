.pragma library

// Contrast of two opaque colours, from 1 to 21, as accessibility guidelines define it.
function ratio(one, other) {
    const a = luminance(one);
    const b = luminance(other);
    return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
}

function luminance(colour) {
    const linear = part => part <= 0.04045 ? part / 12.92 : Math.pow((part + 0.055) / 1.055, 2.4);
    return 0.2126 * linear(colour.r) + 0.7152 * linear(colour.g) + 0.0722 * linear(colour.b);
}

// @p colour as it looks on an opaque ground.
function over(colour, ground, opacity) {
    const share = colour.a * opacity;
    const mix = (a, b) => a * share + b * (1 - share);
    return Qt.rgba(mix(colour.r, ground.r), mix(colour.g, ground.g), mix(colour.b, ground.b), 1);
}
