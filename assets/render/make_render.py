#!/usr/bin/env python3
"""Renders the sample for denoising: a room with a chequered floor, a patterned wall, and glossy, glass and matt things.

Writes, beside this file or into the folder that is given as the argument:
  color.exr      path traced with few samples a pixel, and noisy for that
  albedo.exr     reflectance of the surface seen, with as few samples
  normal.exr     its normal in world space, with as few samples
  reference.exr  the same picture with many samples
"""
import sys
import time
from pathlib import Path

import mitsuba as mi
import numpy as np

mi.set_variant("scalar_rgb")  # the one that needs no compiler on the machine

SIZE = 256
NOISY_SAMPLES = 4
REFERENCE_SAMPLES = 2048
# One each: with the same, the noise of two pictures would be related.
COLOR_SEED = 1
GUIDE_SEED = 2
REFERENCE_SEED = 3

T = mi.ScalarTransform4f


def rgb(*color):
    return {"type": "rgb", "value": list(color)}


def matt(reflectance):
    return {"type": "twosided", "bsdf": {"type": "diffuse", "reflectance": reflectance}}


def wall_pattern():
    """Rings in the middle, with fine stripes around them: detail that only the albedo tells from noise."""
    size = 512
    y, x = np.mgrid[0:size, 0:size] / (size - 1) * 2 - 1
    radius = np.hypot(x, y)
    rings = 0.5 + 0.5 * np.cos(radius * 40)
    stripes = 0.5 + 0.5 * np.sign(np.sin((x + y) * 60))
    inside = (radius < 0.75)[..., None]
    warm, cool = np.array([0.75, 0.45, 0.15]), np.array([0.10, 0.25, 0.45])
    pale, grey = np.array([0.70, 0.68, 0.62]), np.array([0.50, 0.50, 0.48])
    ring_color = cool + rings[..., None] * (warm - cool)
    stripe_color = grey + stripes[..., None] * (pale - grey)
    pixels = np.where(inside, ring_color, stripe_color).astype(np.float32)
    return {"type": "bitmap", "bitmap": mi.Bitmap(pixels), "raw": True}


def rectangle(bsdf, position, axis=(0, 1, 0), angle=0, scale=1):
    to_world = T().translate(position) @ T().rotate(axis, angle) @ T().scale(scale)
    return {"type": "rectangle", "to_world": to_world, "bsdf": bsdf}


def sphere(bsdf, center, radius):
    return {"type": "sphere", "center": list(center), "radius": radius, "bsdf": bsdf}


def scene(for_guides=False):
    """The room. For guides, glass and metal are matt in the colour that they let through or mirror: they scatter
    nothing, so their own albedo would be black."""
    tiles = {"type": "checkerboard", "color0": rgb(0.65, 0.62, 0.55), "color1": rgb(0.12, 0.10, 0.10),
             "to_uv": T().scale([6, 6, 1])}
    lamp = rectangle(matt(rgb(0.8, 0.8, 0.8)), [0.1, 0.995, -0.1], (1, 0, 0), 90, [0.35, 0.25, 1])
    lamp["emitter"] = {"type": "area", "radiance": rgb(20, 17, 13)}
    block = {"type": "cube", "bsdf": matt(rgb(0.55, 0.55, 0.60)),
             "to_world": T().translate([-0.45, -0.45, -0.45]) @ T().rotate([0, 1, 0], 20)
                         @ T().scale([0.26, 0.55, 0.26])}
    gloss = {"type": "principled", "base_color": rgb(0.70, 0.12, 0.08), "roughness": 0.15, "specular": 0.6}
    metal = {"type": "roughconductor", "material": "Cu", "alpha": 0.15}
    glass = {"type": "dielectric"}
    if for_guides:
        metal, glass = matt(rgb(0.93, 0.54, 0.41)), matt(rgb(1, 1, 1))
    return {
        "type": "scene",
        "sensor": {
            "type": "perspective",
            "fov": 36.8,
            "to_world": T().look_at(origin=[0, 0.02, 3.85], target=[0, -0.05, 0], up=[0, 1, 0]),
            "film": {"type": "hdrfilm", "width": SIZE, "height": SIZE, "pixel_format": "rgb",
                     "rfilter": {"type": "box"}},  # keeps the noise of neighbouring pixels apart
            "sampler": {"type": "independent"},
        },
        "floor": rectangle(matt(tiles), [0, -1, 0], (1, 0, 0), -90),
        "ceiling": rectangle(matt(rgb(0.75, 0.75, 0.72)), [0, 1, 0], (1, 0, 0), 90),
        "back": rectangle(matt(wall_pattern()), [0, 0, -1]),
        "left": rectangle(matt(rgb(0.60, 0.16, 0.12)), [-1, 0, 0], (0, 1, 0), 90),
        "right": rectangle(matt(rgb(0.16, 0.42, 0.18)), [1, 0, 0], (0, 1, 0), -90),
        "lamp": lamp,
        "block": block,
        "glossy": sphere(gloss, [-0.40, 0.32, -0.42], 0.22),
        "glass": sphere(glass, [0.48, -0.66, 0.22], 0.34),
        "copper": sphere(metal, [-0.22, -0.80, 0.45], 0.20),
    }


def render(room, integrator, samples, seed):
    started = time.monotonic()
    pixels = np.array(mi.render(room, integrator=mi.load_dict(integrator), spp=samples, seed=seed))
    print(f"{samples} samples a pixel: {time.monotonic() - started:.1f} s")
    return pixels


def save(path, pixels):
    half = mi.Bitmap(np.ascontiguousarray(pixels, dtype=np.float32)).convert(
        mi.Bitmap.PixelFormat.RGB, mi.Struct.Type.Float16, srgb_gamma=False)
    half.write(str(path))
    print(f"{path}: {path.stat().st_size} bytes")


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).parent
    folder.mkdir(parents=True, exist_ok=True)
    path = {"type": "path", "max_depth": 10}
    guides = {"type": "aov", "aovs": "albedo:albedo,normal:sh_normal"}
    room = mi.load_dict(scene())

    save(folder / "color.exr", render(room, path, NOISY_SAMPLES, COLOR_SEED))
    seen = render(mi.load_dict(scene(for_guides=True)), guides, NOISY_SAMPLES, GUIDE_SEED)
    save(folder / "albedo.exr", seen[..., 0:3])
    save(folder / "normal.exr", seen[..., 3:6])
    save(folder / "reference.exr", render(room, path, REFERENCE_SAMPLES, REFERENCE_SEED))


if __name__ == "__main__":
    main()
