# Top-level entry points. `make demo` and `make test` work on a fresh Debian machine as root.
PACKAGES := cmake make g++ gcc flex bison libfl-dev libfltk1.3-dev googletest libgtest-dev xvfb xdotool x11-apps x11-utils ghostscript poppler-utils
BENCH_PACKAGES := libbdd-dev libbenchmark-dev
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all build demo test bench deps bench-deps clean

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

build: deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUARN_TESTS=OFF
	cmake --build build -j $(JOBS)

demo: build
	@bash examples/demo.sh build/quarnc

# The whole suite, built with AddressSanitizer and UndefinedBehaviorSanitizer.
test: deps
	cmake -S . -B build-san -DCMAKE_BUILD_TYPE=Debug -DQUARN_SANITIZE=ON -DQUARN_TESTS=ON
	cmake --build build-san -j $(JOBS)
	cd build-san && ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure -j $(JOBS)

bench: bench-deps
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DQUARN_TESTS=OFF -DQUARN_BENCH=ON
	cmake --build build -j $(JOBS)
	@for b in build/bench/*_bench; do [ -x "$$b" ] && "$$b"; done

clean:
	rm -rf build build-san
