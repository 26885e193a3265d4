# Top-level entry points. `make demo` and `make test` work on a fresh Debian machine as root.
PACKAGES := cmake make g++ gcc flex bison libfl-dev libfltk1.3-dev googletest libgtest-dev ghdl berkeley-abc yosys iverilog python3 mono-mcs mono-runtime libsystemc-dev valgrind xvfb xdotool x11-apps x11-utils ghostscript poppler-utils
FUZZ_PACKAGES := clang libclang-rt-14-dev
BENCH_PACKAGES := libbdd-dev libbenchmark-dev
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all build demo vhdl-demo test bench deps bench-deps fuzz fuzz-deps clean

all: build

# Installs the Debian packages that are missing; does nothing when all are present.
define install_missing
	@missing=""; for p in $(1); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "installing:$$missing"; \
	  $(SUDO) apt-get update && $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $$missing; \
	fi
endef

deps:
	$(call install_missing,$(PACKAGES))

bench-deps:
	$(call install_missing,$(PACKAGES) $(BENCH_PACKAGES))

fuzz-deps:
	$(call install_missing,$(PACKAGES) $(FUZZ_PACKAGES))

build: deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUARN_TESTS=OFF
	cmake --build build -j $(JOBS)

demo: build
	@bash examples/demo.sh build/quarnc

# A handshake circuit compiled to VHDL and simulated by GHDL.
vhdl-demo: build
	@bash examples/vhdl/run.sh build/quarnc

# The whole suite, built with AddressSanitizer and UndefinedBehaviorSanitizer.
test: deps
	cmake -S . -B build-san -DCMAKE_BUILD_TYPE=Debug -DQUARN_SANITIZE=ON -DQUARN_TESTS=ON
	cmake --build build-san -j $(JOBS)
	cd build-san && ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure -j $(JOBS)

bench: bench-deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DQUARN_TESTS=OFF -DQUARN_BENCH=ON
	cmake --build build -j $(JOBS)
	@for b in build/bench/*_bench; do [ -x "$$b" ] && { echo "== $$b"; "$$b" | tee "$$b.out"; }; done
	@echo; echo "== summary"; for b in build/bench/*_bench; do \
	  [ -f "$$b.out" ] && sed -n '/^summary/,$$p' "$$b.out" | sed "s|^|$$(basename $$b): |"; done

# Each libFuzzer harness for FUZZ_TIME seconds (an input may take FUZZ_TIMEOUT, a worker
# FUZZ_RSS MB: a long .qnc run wants more than the default), from the
# corpus in fuzz/corpus (new inputs go to build-fuzz/corpus, crashes to build-fuzz/crash-*).
# A harness runs in fork mode: a compilation frees nothing, so a fresh worker process
# takes over every few minutes instead of one process growing for the whole run;
# crashes, timeouts and running out of memory still end the run.
# then FUZZ_COUNT random programs from FUZZ_SEED, checked differentially.
FUZZ_TIME ?= 60
FUZZ_TIMEOUT ?= 1
FUZZ_RSS ?= 4096
FUZZ_SEED ?= 1000
FUZZ_COUNT ?= 1000
FUZZ_HARNESSES := quarn qnc bddexp cmdline
fuzz: fuzz-deps
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUARN_FUZZ=ON -DQUARN_TESTS=OFF
	cmake --build build-fuzz -j $(JOBS)
	@for h in $(FUZZ_HARNESSES); do \
	  mkdir -p build-fuzz/corpus/$$h; echo "*** fuzz_$$h for $(FUZZ_TIME) s"; \
	  QUARN_BATCH=1 ASAN_OPTIONS=detect_leaks=0 build-fuzz/fuzz/fuzz_$$h build-fuzz/corpus/$$h fuzz/corpus/$$h \
	    -fork=1 -print_funcs=0 -ignore_crashes=0 -ignore_ooms=0 -ignore_timeouts=0 \
	    -max_total_time=$(FUZZ_TIME) -timeout=$(FUZZ_TIMEOUT) -max_len=4096 -rss_limit_mb=$(FUZZ_RSS) -close_fd_mask=3 \
	    -print_final_stats=1 -artifact_prefix=build-fuzz/crash-$$h- || exit 1; \
	done
	cmake -S . -B build-san -DCMAKE_BUILD_TYPE=Debug -DQUARN_SANITIZE=ON -DQUARN_TESTS=ON
	cmake --build build-san -j $(JOBS) --target quarnc qnc_resave
	python3 tests/random/check.py --quarnc build-san/quarnc --resave build-san/tests/qnc_resave \
	  --seed $(FUZZ_SEED) --count $(FUZZ_COUNT) --keep-going

clean:
	rm -rf build build-san build-fuzz
