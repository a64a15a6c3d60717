// The viewer page's script: decodes the motion once, then draws the skeleton
// in perspective on a 2D canvas and plays it. motexport's HtmlWriter.cpp
// says how the frames are packed.
//
// The page reports its state in <pre id="status">, one "key value" line
// each (state, frames, frame, index, hash, ready-ms, error, points), so
// that a headless browser's dump of the document tells what was drawn.
"use strict";

(function () {
    const kFieldOfView = (45 * Math.PI) / 180;
    const kDefaultPitch = (12 * Math.PI) / 180;
    const kPitchLimit = (85 * Math.PI) / 180;
    const kGridCells = 12; // on each side of the figure
    const kHoverPixels = 10;
    const kColours = {
        left: "#5aa9ff",
        right: "#ff8a5c",
        centre: "#e8ecf2",
        joint: "#ffffff",
        grid: "rgba(150, 165, 190, 0.22)",
        path: "rgba(80, 220, 190, 0.35)",
        walked: "rgba(80, 220, 190, 0.9)",
        shadow: "rgba(0, 0, 0, 0.35)",
    };

    const status = {
        state: "loading",
        frames: "",
        frame: "",
        index: "",
        hash: "",
        "ready-ms": "",
        error: "",
        points: "",
    };

    function element(id) {
        return document.getElementById(id);
    }

    function writeStatus() {
        element("status").textContent = Object.keys(status)
            .map((key) => key + " " + status[key])
            .join("\n");
    }

    function fail(message) {
        status.state = "error";
        status.error = String(message);
        const panel = element("error");
        panel.textContent = status.error;
        panel.hidden = false;
        writeStatus();
    }

    window.addEventListener("error", (event) => fail(event.message));

    // ---- Vectors: arrays of three numbers.

    function add(a, b) {
        return [a[0] + b[0], a[1] + b[1], a[2] + b[2]];
    }
    function sub(a, b) {
        return [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
    }
    function scale(s, a) {
        return [s * a[0], s * a[1], s * a[2]];
    }
    function dot(a, b) {
        return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    }
    function cross(a, b) {
        return [
            a[1] * b[2] - a[2] * b[1],
            a[2] * b[0] - a[0] * b[2],
            a[0] * b[1] - a[1] * b[0],
        ];
    }
    function unit(a) {
        return scale(1 / Math.hypot(a[0], a[1], a[2]), a);
    }

    // ---- The motion, decoded once.

    function bytesOf(base64) {
        const text = atob(base64);
        const bytes = new Uint8Array(text.length);
        for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
        return bytes;
    }

    // Frame numbers and every point's place, in the capture's own axes.
    function decode(motion) {
        const numPoints = motion.bodies.length + motion.leaves.length;
        const frames = motion.frames;
        const record = 16 + 6 * (numPoints - 1);
        const bytes = bytesOf(motion.data);
        if (bytes.length !== record * frames)
            throw new Error("The page's frame data is incomplete.");
        const data = new DataView(bytes.buffer);
        const numbers = new Int32Array(frames);
        const positions = new Float32Array(frames * numPoints * 3);
        const low = motion.offsetMin;
        const step = motion.offsetStep;
        for (let frame = 0, at = 0, out = 0; frame < frames; ++frame) {
            numbers[frame] = data.getInt32(at, true);
            const root = [0, 1, 2].map((axis) =>
                data.getFloat32(at + 4 + 4 * axis, true),
            );
            at += 16;
            positions.set(root, out);
            out += 3;
            for (let point = 1; point < numPoints; ++point)
                for (let axis = 0; axis < 3; ++axis, at += 2)
                    positions[out++] =
                        root[axis] +
                        low[axis] +
                        data.getUint16(at, true) * step[axis];
        }
        return { numbers, positions, numPoints };
    }

    // The capture's up axis and two ground axes, so that (ground1, up,
    // ground2) turn as (x, y, z) do and nothing is mirrored.
    function axesFor(up) {
        return up === "z"
            ? { up: [0, 0, 1], ground1: [1, 0, 0], ground2: [0, -1, 0] }
            : { up: [0, 1, 0], ground1: [1, 0, 0], ground2: [0, 0, 1] };
    }

    // Left and right by name: a name that starts with l (or left) and has a
    // twin that starts with r (or right) instead, and the other way round.
    function sidesOf(names) {
        const known = new Set(names.map((name) => name.toLowerCase()));
        const twins = [
            ["left", "right", "left"],
            ["right", "left", "right"],
            ["l", "r", "left"],
            ["r", "l", "right"],
        ];
        return names.map((name) => {
            const lower = name.toLowerCase();
            for (const [own, other, side] of twins)
                if (
                    lower.startsWith(own) &&
                    known.has(other + lower.slice(own.length))
                )
                    return side;
            return "centre";
        });
    }

    // 1, 2 or 5 times a power of ten, at least value.
    function niceStep(value) {
        const power = Math.pow(10, Math.floor(Math.log10(value)));
        for (const factor of [1, 2, 5, 10])
            if (factor * power >= value) return factor * power;
        return 10 * power;
    }

    // ---- The viewer.

    function Viewer(motion) {
        const decoded = decode(motion);
        const frames = motion.frames;
        const numPoints = decoded.numPoints;
        const positions = decoded.positions;
        const numbers = decoded.numbers;
        const axes = axesFor(motion.up);
        const sides = sidesOf(motion.bodies);
        const pointNames = motion.bodies.concat(
            motion.leaves.map((body) => motion.bodies[body] + " (end)"),
        );
        const times = Array.from(numbers, (n) => (n - numbers[0]) / motion.fps);
        const duration = frames ? times[frames - 1] + 1 / motion.fps : 0;

        function point(frame, index) {
            const at = (frame * numPoints + index) * 3;
            return [positions[at], positions[at + 1], positions[at + 2]];
        }

        // The ground under the take's lowest point, and the figure's height
        // above it, which sets the grid and the camera's distance.
        let ground = Infinity;
        let top = -Infinity;
        for (let i = 0; i < positions.length; i += 3) {
            const height = dot(axes.up, [
                positions[i],
                positions[i + 1],
                positions[i + 2],
            ]);
            ground = Math.min(ground, height);
            top = Math.max(top, height);
        }
        if (!frames) ground = top = 0;
        const size = top - ground > 0 ? top - ground : 1;
        const cell = niceStep(size / 4);
        element("grid").textContent =
            "grid cell " + Number(cell.toPrecision(6)) + " units";

        function onGround(p) {
            return add(p, scale(ground - dot(axes.up, p), axes.up));
        }

        const path = [];
        for (let frame = 0; frame < frames; ++frame)
            path.push(onGround(point(frame, 0)));

        // A three-quarter view across the way the figure goes.
        function defaultYaw() {
            if (frames < 2) return Math.PI / 6;
            const way = sub(path[frames - 1], path[0]);
            if (Math.hypot(way[0], way[1], way[2]) < size) return Math.PI / 6;
            return (
                Math.atan2(dot(way, axes.ground1), dot(way, axes.ground2)) +
                Math.PI / 3
            );
        }

        const view = {};
        function resetView() {
            view.yaw = defaultYaw();
            view.pitch = kDefaultPitch;
            view.distance = 2.2 * size;
        }
        resetView();

        const canvas = element("view");
        const context = canvas.getContext("2d");
        let index = 0;
        let clock = 0;
        let playing = false;
        let speed = 1;
        let lastTick = 0;
        let camera = null;
        let projectedJoints = [];
        let readyReported = false;

        function makeCamera() {
            const root = frames ? point(index, 0) : [0, 0, 0];
            const target = add(onGround(root), scale(0.5 * size, axes.up));
            const direction = add(
                add(
                    scale(
                        Math.cos(view.pitch) * Math.sin(view.yaw),
                        axes.ground1,
                    ),
                    scale(
                        Math.cos(view.pitch) * Math.cos(view.yaw),
                        axes.ground2,
                    ),
                ),
                scale(Math.sin(view.pitch), axes.up),
            );
            const eye = add(target, scale(view.distance, direction));
            const forward = unit(sub(target, eye));
            const right = unit(cross(forward, axes.up));
            const up = cross(right, forward);
            const width = canvas.width;
            const height = canvas.height;
            return {
                target,
                eye,
                forward,
                right,
                up,
                focal: height / 2 / Math.tan(kFieldOfView / 2),
                centreX: width / 2,
                centreY: height / 2,
                near: 0.01 * size,
            };
        }

        // Camera coordinates: right, up, depth.
        function toCamera(p) {
            const v = sub(p, camera.eye);
            return [
                dot(v, camera.right),
                dot(v, camera.up),
                dot(v, camera.forward),
            ];
        }

        function toScreen(c) {
            return [
                camera.centreX + (camera.focal * c[0]) / c[2],
                camera.centreY - (camera.focal * c[1]) / c[2],
            ];
        }

        // The part of a line in front of the camera, on the screen; null
        // when none of it is.
        function clipped(a, b) {
            let ca = toCamera(a);
            let cb = toCamera(b);
            const near = camera.near;
            if (ca[2] < near && cb[2] < near) return null;
            if (ca[2] < near)
                ca = add(
                    cb,
                    scale((near - cb[2]) / (ca[2] - cb[2]), sub(ca, cb)),
                );
            else if (cb[2] < near)
                cb = add(
                    ca,
                    scale((near - ca[2]) / (cb[2] - ca[2]), sub(cb, ca)),
                );
            return [toScreen(ca), toScreen(cb), (ca[2] + cb[2]) / 2];
        }

        function strokeLines(lines, colour, width) {
            context.strokeStyle = colour;
            context.lineWidth = width;
            context.beginPath();
            for (const [a, b] of lines) {
                const line = clipped(a, b);
                if (!line) continue;
                context.moveTo(line[0][0], line[0][1]);
                context.lineTo(line[1][0], line[1][1]);
            }
            context.stroke();
        }

        function drawGrid() {
            const centre = camera.target;
            const u = Math.round(dot(centre, axes.ground1) / cell);
            const v = Math.round(dot(centre, axes.ground2) / cell);
            const base = scale(ground, axes.up);
            const at = (i, j) =>
                add(
                    base,
                    add(
                        scale(i * cell, axes.ground1),
                        scale(j * cell, axes.ground2),
                    ),
                );
            const lines = [];
            for (let k = -kGridCells; k <= kGridCells; ++k) {
                lines.push([
                    at(u + k, v - kGridCells),
                    at(u + k, v + kGridCells),
                ]);
                lines.push([
                    at(u - kGridCells, v + k),
                    at(u + kGridCells, v + k),
                ]);
            }
            strokeLines(lines, kColours.grid, 1);
        }

        function drawPath() {
            const walked = [];
            const ahead = [];
            for (let frame = 1; frame < frames; ++frame)
                (frame <= index ? walked : ahead).push([
                    path[frame - 1],
                    path[frame],
                ]);
            strokeLines(ahead, kColours.path, 1.5);
            strokeLines(walked, kColours.walked, 2);
        }

        function drawShadow() {
            const lines = [];
            const segments = motion.segments;
            for (let s = 0; s < segments.length; s += 2)
                lines.push([
                    onGround(point(index, segments[s])),
                    onGround(point(index, segments[s + 1])),
                ]);
            strokeLines(lines, kColours.shadow, 4);
        }

        // Far bones first, so that near ones cover them. Returns the hash
        // of what was drawn.
        function drawFigure() {
            const segments = motion.segments;
            const bones = [];
            for (let s = 0; s < segments.length; s += 2) {
                const line = clipped(
                    point(index, segments[s]),
                    point(index, segments[s + 1]),
                );
                if (line) bones.push({ line, side: sides[segments[s]] });
            }
            bones.sort((a, b) => b.line[2] - a.line[2]);
            const thickness = (depth) =>
                Math.max(
                    1.5,
                    Math.min(8, (camera.focal * 0.012 * size) / depth),
                );
            context.lineCap = "round";
            let hash = 2166136261;
            const mix = (value) => {
                hash = Math.imul(hash ^ Math.round(value * 100), 16777619);
            };
            for (const bone of bones) {
                const [a, b, depth] = bone.line;
                context.strokeStyle = kColours[bone.side];
                context.lineWidth = thickness(depth);
                context.beginPath();
                context.moveTo(a[0], a[1]);
                context.lineTo(b[0], b[1]);
                context.stroke();
                [a[0], a[1], b[0], b[1]].forEach(mix);
            }
            projectedJoints = [];
            context.fillStyle = kColours.joint;
            for (let p = 0; p < numPoints; ++p) {
                const c = toCamera(point(index, p));
                if (c[2] < camera.near) continue;
                const s = toScreen(c);
                projectedJoints.push({ point: p, x: s[0], y: s[1] });
                context.beginPath();
                context.arc(s[0], s[1], 0.8 * thickness(c[2]), 0, 2 * Math.PI);
                context.fill();
                mix(s[0]);
                mix(s[1]);
            }
            return (hash >>> 0).toString(16).padStart(8, "0");
        }

        function updateText() {
            if (!frames) {
                element("clock").textContent = "The motion has no frames.";
                return;
            }
            element("slider").value = String(index);
            element("clock").textContent =
                "frame " +
                numbers[index] +
                " \u00b7 " +
                times[index].toFixed(3) +
                " s / " +
                duration.toFixed(3) +
                " s";
            element("play").textContent = playing ? "Pause" : "Play";
        }

        function draw() {
            const ratio = window.devicePixelRatio || 1;
            const width = Math.round(canvas.clientWidth * ratio);
            const height = Math.round(canvas.clientHeight * ratio);
            if (canvas.width !== width || canvas.height !== height) {
                canvas.width = width;
                canvas.height = height;
            }
            camera = makeCamera();
            context.clearRect(0, 0, width, height);
            drawGrid();
            let hash = "";
            if (frames) {
                drawPath();
                drawShadow();
                hash = drawFigure();
            }
            updateText();
            status.state = status.error ? "error" : "ready";
            status.frames = String(frames);
            status.frame = frames ? String(numbers[index]) : "";
            status.index = frames ? String(index) : "";
            status.hash = hash;
            const points = [];
            for (let p = 0; frames && p < numPoints; ++p)
                points.push(
                    point(index, p)
                        .map((v) => v.toFixed(4))
                        .join(","),
                );
            status.points = points.join(" ");
            if (!readyReported) {
                readyReported = true;
                status["ready-ms"] = performance.now().toFixed(1);
            }
            writeStatus();
        }

        // The last frame whose time has come.
        function frameAt(time) {
            let low = 0;
            let high = frames - 1;
            while (low < high) {
                const middle = (low + high + 1) >> 1;
                if (times[middle] <= time) low = middle;
                else high = middle - 1;
            }
            return low;
        }

        function show(frame) {
            index = Math.max(0, Math.min(frames - 1, frame));
            clock = frames ? times[index] : 0;
            draw();
        }

        function tick(now) {
            if (!playing) return;
            clock = (clock + ((now - lastTick) / 1000) * speed) % duration;
            lastTick = now;
            index = frameAt(clock);
            draw();
            requestAnimationFrame(tick);
        }

        function setPlaying(on) {
            playing = on && frames > 1;
            if (playing) {
                lastTick = performance.now();
                requestAnimationFrame(tick);
            }
            updateText();
        }

        // page.html#frame=N: paused at the first frame numbered N or later.
        function frameFromAddress() {
            const match = /frame=(-?\d+)/.exec(location.hash);
            if (!match) return null;
            const wanted = Number(match[1]);
            let frame = 0;
            while (frame < frames - 1 && numbers[frame] < wanted) ++frame;
            return frame;
        }

        function showAddress() {
            const frame = frameFromAddress();
            if (frame === null) return false;
            setPlaying(false);
            show(frame);
            return true;
        }

        function hoverAt(x, y) {
            let best = null;
            let bestDistance = kHoverPixels;
            for (const joint of projectedJoints) {
                const distance = Math.hypot(joint.x - x, joint.y - y);
                if (distance <= bestDistance) {
                    best = joint;
                    bestDistance = distance;
                }
            }
            element("joint").textContent = best ? pointNames[best.point] : "";
        }

        function listen() {
            let drag = null;
            canvas.addEventListener("pointerdown", (event) => {
                drag = { x: event.clientX, y: event.clientY };
                canvas.setPointerCapture(event.pointerId);
                canvas.classList.add("dragging");
            });
            canvas.addEventListener("pointermove", (event) => {
                const ratio = window.devicePixelRatio || 1;
                if (!drag) {
                    hoverAt(event.offsetX * ratio, event.offsetY * ratio);
                    return;
                }
                view.yaw -= (event.clientX - drag.x) * 0.008;
                view.pitch = Math.max(
                    -kPitchLimit,
                    Math.min(
                        kPitchLimit,
                        view.pitch + (event.clientY - drag.y) * 0.008,
                    ),
                );
                drag = { x: event.clientX, y: event.clientY };
                draw();
            });
            const endDrag = () => {
                drag = null;
                canvas.classList.remove("dragging");
            };
            canvas.addEventListener("pointerup", endDrag);
            canvas.addEventListener("pointercancel", endDrag);
            canvas.addEventListener(
                "wheel",
                (event) => {
                    event.preventDefault();
                    view.distance = Math.max(
                        0.05 * size,
                        Math.min(
                            200 * size,
                            view.distance * Math.exp(event.deltaY * 0.001),
                        ),
                    );
                    draw();
                },
                { passive: false },
            );
            window.addEventListener("keydown", (event) => {
                if (event.ctrlKey || event.metaKey || event.altKey) return;
                if (event.key === " ") setPlaying(!playing);
                else if (
                    event.key === "ArrowLeft" ||
                    event.key === "ArrowRight"
                ) {
                    setPlaying(false);
                    show(index + (event.key === "ArrowLeft" ? -1 : 1));
                } else if (event.key === "r" || event.key === "R") {
                    resetView();
                    draw();
                } else return;
                event.preventDefault();
            });
            const play = element("play");
            play.addEventListener("click", () => {
                setPlaying(!playing);
                play.blur();
            });
            const slider = element("slider");
            slider.max = String(Math.max(0, frames - 1));
            slider.addEventListener("input", () => show(Number(slider.value)));
            const speedChoice = element("speed");
            speedChoice.addEventListener("change", () => {
                speed = Number(speedChoice.value);
                speedChoice.blur();
            });
            window.addEventListener("resize", draw);
            window.addEventListener("hashchange", showAddress);
        }

        this.start = function () {
            listen();
            if (!showAddress()) {
                show(0);
                setPlaying(true);
            }
        };
    }

    function describe(motion) {
        element("skeleton-name").textContent = motion.skeleton;
        element("skeleton-file").textContent = motion.skeletonFile;
        element("motion-file").textContent = motion.motionFile;
        const bones = motion.bodies.length - 1;
        element("counts").textContent =
            bones +
            (bones === 1 ? " bone \u00b7 " : " bones \u00b7 ") +
            motion.frames +
            (motion.frames === 1 ? " frame \u00b7 " : " frames \u00b7 ") +
            motion.fps +
            " fps";
    }

    try {
        const motion = JSON.parse(element("motion").textContent);
        describe(motion);
        new Viewer(motion).start();
    } catch (error) {
        fail(error && error.message ? error.message : error);
    }
})();
