#!/usr/bin/env python3
"""Synthesises walk.amc, the example motion for human.asf: a steady walk
forward along +Z at 30 frames per second, made of a few sine curves per
joint. Run from this folder: python3 make_walk.py > walk.amc"""
import math

FRAMES = 240
FPS = 30.0
CYCLE = 1.1  # seconds per stride (two steps)


def curves(t):
    p = 2.0 * math.pi * t / CYCLE
    s, c = math.sin, math.cos
    hip = 28.0 * s(p)
    knee_l = 30.0 + 30.0 * s(p - 1.2)
    knee_r = 30.0 + 30.0 * s(p + math.pi - 1.2)
    swing = 22.0 * s(p + math.pi)
    return [
        # Lengths in the skeleton's file units: the hips ride about 8 units
        # high and a stride covers about 6.
        ("root", [0.15 * s(2 * p), 8.0 + 0.15 * c(2 * p), 6.0 * t / CYCLE,
                  2.0 * s(2 * p), 4.0 * s(p), 1.5 * c(p)]),
        ("lowerback", [3.0 + 1.5 * c(2 * p), -2.0 * s(p), 0.8 * s(p)]),
        ("upperback", [1.0 + 0.8 * c(2 * p), -2.5 * s(p), 0.6 * s(p)]),
        ("thorax", [0.5 * c(2 * p), -3.0 * s(p), 0.4 * s(p)]),
        ("lowerneck", [-4.0 + 1.0 * c(2 * p), 1.5 * s(p), 0.0]),
        ("upperneck", [2.0 - 0.8 * c(2 * p), 1.5 * s(p), 0.0]),
        ("head", [1.0 * c(2 * p), 2.0 * s(p), -0.5 * s(p)]),
        ("lclavicle", [1.5 * s(p), -2.0 + 1.0 * c(2 * p)]),
        ("lhumerus", [swing, 8.0, -72.0 + 3.0 * c(2 * p)]),
        ("lradius", [25.0 + 10.0 * s(p + math.pi + 0.6)]),
        ("lwrist", [-90.0 + 4.0 * s(p)]),
        ("lhand", [-8.0 + 3.0 * s(p), 2.0]),
        ("lfingers", [12.0]),
        ("lthumb", [10.0, -12.0]),
        ("rclavicle", [-1.5 * s(p), 2.0 - 1.0 * c(2 * p)]),
        ("rhumerus", [-swing, -8.0, 72.0 - 3.0 * c(2 * p)]),
        ("rradius", [25.0 + 10.0 * s(p + 0.6)]),
        ("rwrist", [-90.0 - 4.0 * s(p)]),
        ("rhand", [-8.0 - 3.0 * s(p), -2.0]),
        ("rfingers", [12.0]),
        ("rthumb", [10.0, 12.0]),
        ("lfemur", [-hip - 5.0, 3.0 * s(p), -4.0 + 2.0 * c(p)]),
        ("ltibia", [knee_l]),
        ("lfoot", [-6.0 + 12.0 * s(p + 0.9), -3.0]),
        ("ltoes", [-10.0 * max(0.0, s(p + 2.2))]),
        ("rfemur", [hip - 5.0, -3.0 * s(p), 4.0 - 2.0 * c(p)]),
        ("rtibia", [knee_r]),
        ("rfoot", [-6.0 + 12.0 * s(p + math.pi + 0.9), 3.0]),
        ("rtoes", [-10.0 * max(0.0, s(p + math.pi + 2.2))]),
    ]


def number(value):
    """Six significant digits, as capture systems write them; no "-0"."""
    value = round(value, 4)
    return "%.6g" % (value if value != 0 else 0.0)


def main():
    print("# A walk forward, synthesised for motbake's examples (make_walk.py).")
    print(":FULLY-SPECIFIED")
    print(":DEGREES")
    for frame in range(1, FRAMES + 1):
        print(frame)
        for name, values in curves((frame - 1) / FPS):
            print(name + " " + " ".join(number(v) for v in values))


main()
