# The front door: make demo, make test, make demo-check, make build,
# make install, make bench, make verify-format, make fuzz, make format,
# make format-check, make screenshot.
# Missing Debian packages are installed when run as root.

BUILD_DIR  ?= build/release
PREFIX     ?= /usr/local
DESTDIR    ?=
TEST_DIR   ?= build/test
BENCH_DIR  ?= build/bench
FUZZ_DIR   ?= build/fuzz
FUZZ_SECONDS ?= 60
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)

BUILD_PACKAGES := cmake g++ make
TEST_PACKAGES  := $(BUILD_PACKAGES) libgtest-dev gzip ncompress libjpeg-turbo-progs \
                  man-db groff-base python3-numpy python3-pandas chromium
FUZZ_PACKAGES  := cmake make clang libclang-rt-14-dev
FUZZ_TARGETS   := skeleton motion conversion rig export commandline
DEMO_OUTPUTS   := walk.mel walk.mov human_rig.mel walk.bvh walk.csv walk.html
# The README's picture: the example's page at this frame, at this size.
SCREENSHOT_FRAME := 88
SCREENSHOT_SIZE  := 1200,640

.PHONY: all build install test demo demo-check bench verify-format fuzz format format-check \
        screenshot clean

all: build

build:
	@tools/require-packages $(BUILD_PACKAGES)
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Release -DMOTBAKE_BUILD_TESTS=OFF
	cmake --build $(BUILD_DIR) -j $(JOBS)

# The Release programs to $(DESTDIR)$(PREFIX)/bin and their manual pages to
# $(DESTDIR)$(PREFIX)/share/man/man1.
install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD_DIR) --prefix "$(PREFIX)"

# Converts the bundled example into out/, showing the progress lines, and
# writes the rig script of its skeleton and the BVH, CSV and HTML exports.
demo: build
	mkdir -p out
	$(BUILD_DIR)/app/motbake -f examples/human.asf examples/walk.amc 30 \
	    out/walk.mel out/walk.mov
	$(BUILD_DIR)/rigbake/rigbake -f examples/human.asf out/human_rig.mel
	$(BUILD_DIR)/motexport/motexport -f examples/human.asf examples/walk.amc 30 \
	    out/walk.bvh out/walk.csv out/walk.html

# The Release build that users run: the demo's outputs must equal the
# expected files byte for byte.
demo-check: demo
	@for file in $(DEMO_OUTPUTS); do \
	    cmp out/$$file examples/expected/$$file || exit 1; \
	done
	@echo "demo outputs equal examples/expected/"

# The picture at the top of the README: the demo's page in headless
# chromium, paused at a fixed frame, at a fixed size.
screenshot: demo
	@tools/require-packages chromium
	mkdir -p docs
	tools/headless-chromium --window-size=$(SCREENSHOT_SIZE) \
	    --virtual-time-budget=5000 --screenshot=docs/viewer.png \
	    "file://$(CURDIR)/out/walk.html#frame=$(SCREENSHOT_FRAME)"
	@echo "wrote docs/viewer.png"

# Sanitizers and warnings-as-errors, then every test.
test:
	@tools/require-packages $(TEST_PACKAGES)
	cmake -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DMOTBAKE_BUILD_TESTS=ON \
	      -DMOTBAKE_SANITIZE=ON -DMOTBAKE_WERROR=ON
	cmake --build $(TEST_DIR) -j $(JOBS)
	cd $(TEST_DIR) && ctest --output-on-failure -j $(JOBS)

# Release build; generates the captures under $(BENCH_DIR)/data (kept for
# later runs) and prints the table. BENCH_ARGS passes options to bench_run.
bench:
	@tools/require-packages $(BUILD_PACKAGES)
	cmake -S . -B $(BENCH_DIR) -DCMAKE_BUILD_TYPE=Release -DMOTBAKE_BUILD_TESTS=OFF \
	      -DMOTBAKE_BUILD_BENCH=ON
	cmake --build $(BENCH_DIR) -j $(JOBS)
	$(BENCH_DIR)/bench/verify_format --threads $(JOBS)
	$(BENCH_DIR)/bench/bench_run --work $(BENCH_DIR)/data $(BENCH_ARGS)

# Every one of the 2^32 floats through the fast formatter and printf (about
# ten minutes on two cores).
verify-format:
	@tools/require-packages $(BUILD_PACKAGES)
	cmake -S . -B $(BENCH_DIR) -DCMAKE_BUILD_TYPE=Release -DMOTBAKE_BUILD_TESTS=OFF \
	      -DMOTBAKE_BUILD_BENCH=ON
	cmake --build $(BENCH_DIR) -j $(JOBS) --target verify_format
	$(BENCH_DIR)/bench/verify_format --all --threads $(JOBS)

# Each fuzz target for FUZZ_SECONDS, one after the other. The saved corpus
# and findings in fuzz/ seed the search; new inputs collect in fuzz/work/
# (not kept), and a crash input lands in fuzz/work/<target>-artifacts/: save
# it in fuzz/findings/<target>/ once it is fixed, so that make test replays it.
# Inputs are capped at 128 KiB; a run that is slow (10 s), allocates more
# than 1 MB at once (8 times the largest input, the programs' memory bound)
# or holds more than 2 GB counts as a finding.
fuzz:
	@tools/require-packages $(FUZZ_PACKAGES)
	cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	      -DCMAKE_CXX_COMPILER=clang++ -DMOTBAKE_FUZZ=ON \
	      -DMOTBAKE_BUILD_TESTS=OFF
	cmake --build $(FUZZ_DIR) -j $(JOBS)
	@for target in $(FUZZ_TARGETS); do \
	    mkdir -p fuzz/work/$$target fuzz/work/$$target-artifacts \
	        fuzz/findings/$$target && \
	    echo "== fuzzing $$target for $(FUZZ_SECONDS) s" && \
	    $(FUZZ_DIR)/fuzz/fuzz_$$target -max_total_time=$(FUZZ_SECONDS) \
	        -max_len=131072 -timeout=10 -malloc_limit_mb=1 \
	        -rss_limit_mb=2048 -dict=fuzz/motbake.dict \
	        -artifact_prefix=fuzz/work/$$target-artifacts/ -print_final_stats=1 \
	        fuzz/work/$$target fuzz/corpus/$$target fuzz/findings/$$target \
	        || exit 1; \
	done

format:
	@tools/require-packages clang-format
	git ls-files '*.h' '*.cpp' | xargs clang-format -i -style=file

format-check:
	@tools/require-packages clang-format
	git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror -style=file

clean:
	rm -rf build out
