# Molvera: `make run` and `make test` are the whole set-up on a fresh Debian 12 machine.

BUILD      ?= build
ASAN_BUILD ?= build-asan
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_GEN  := -G Ninja

# Debian packages the build, the tests and the program need.
PACKAGES := cmake ninja-build g++ pkg-config libgtest-dev libgmock-dev libbenchmark-dev libceres-dev \
            nlohmann-json3-dev libcli11-dev libxrl-dev qt6-base-dev qt6-svg-dev fontconfig fonts-dejavu-core

SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps configure build run test asan-test bench screenshots clean lint lint-deps \
        lint-format lint-tidy format package package-check

all: build

# `$(call install,PACKAGES)` installs only what is missing; nothing to do (and no
# network) when all is there.
define install
	@missing=$$(for p in $(1); do \
	    dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q '^install ok installed' || echo $$p; \
	  done); \
	if [ -n "$$missing" ]; then \
	  echo "Installing: $$missing"; \
	  $(SUDO) apt-get update -qq && \
	  DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y --no-install-recommends $$missing; \
	fi
endef

deps:
	$(call install,$(PACKAGES))

$(BUILD)/build.ninja: | deps
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -x $(BUILD)/app/molvera ]; then \
	  $(BUILD)/app/molvera; \
	else \
	  ./examples/tour.sh $(BUILD)/molvera-cli; \
	fi

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

# The tests again under AddressSanitizer and UndefinedBehaviorSanitizer.
asan-test: deps
	cmake -S . -B $(ASAN_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DMOLVERA_SANITIZE=ON -DMOLVERA_BENCH=OFF
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS)

bench: build
	$(BUILD)/bench/molvera_bench

# Pictures of the main window, the region window with a fitted spectrum, the options,
# background and constraint dialogs and the peak editor, as PNG files in docs/screenshots/
# (committed: the README shows them), and the HTML report as a browser shows it: a
# headless chromium, which only this target installs, draws report-html.png.
SCREENSHOT_PACKAGES := chromium

screenshots: build
	$(call install,$(SCREENSHOT_PACKAGES))
	mkdir -p docs/screenshots
	QT_QPA_PLATFORM=offscreen MOLVERA_SCREENSHOT_DIR=$(CURDIR)/docs/screenshots \
	  $(BUILD)/tests/ui/molvera_ui_tests --gtest_also_run_disabled_tests \
	  --gtest_filter='GuiTest.DISABLED_Screenshots:GuideTest.DISABLED_Screens'
	./examples/report-screenshot.sh $(BUILD)/molvera-cli docs/screenshots/report-html.png

clean:
	rm -rf $(BUILD) $(ASAN_BUILD)

# The Debian package molvera_<version>_amd64.deb in the top folder, by CPack from the
# install() rules. PACKAGE_PACKAGES is what packaging needs besides PACKAGES:
# dpkg-shlibdeps (dpkg-dev) computes the dependencies from the binaries, help2man makes
# the man pages from --help and --version, rsvg-convert (librsvg2-bin) the PNG icons;
# `make package-check` adds lintian,
# desktop-file-validate (desktop-file-utils), appstreamcli (appstream) and gio and
# update-mime-database (libglib2.0-bin, shared-mime-info) for the MIME types.
PACKAGE_PACKAGES := dpkg-dev help2man librsvg2-bin
CHECK_PACKAGES   := lintian desktop-file-utils appstream libglib2.0-bin shared-mime-info

package: deps
	$(call install,$(PACKAGE_PACKAGES))
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMOLVERA_PACKAGE=ON \
	  -DCMAKE_INSTALL_PREFIX=/usr
	cmake --build $(BUILD) -j $(JOBS) --target molvera molvera-cli package_files
	cd $(BUILD) && cpack -G DEB
	cp $(BUILD)/molvera_*_amd64.deb .

# lintian, desktop-file-validate, appstreamcli, the MIME types and, as root, an install
# test of the package (packaging/check.sh).
package-check: package
	$(call install,$(CHECK_PACKAGES))
	./packaging/check.sh $$(ls -t molvera_*_amd64.deb | head -n 1) $(BUILD)

# Style. `make lint`: the format of every C++ file of ours against .clang-format, and
# clang-tidy (.clang-tidy) over the layers below the Qt layer and molvera-cli, in
# parallel; it reports both even when one fails. `make format` formats the same files.
LINT_PACKAGES := clang-format clang-tidy
FORMAT_FILES   = $(shell find src app tests bench fuzz -name '*.cpp' -o -name '*.h' | sort)
TIDY_LAYERS   := base model spectral constraints fitting fileio plot session
TIDY_FILES     = $(wildcard $(TIDY_LAYERS:%=src/%/*.cpp))

lint-deps:
	$(call install,$(LINT_PACKAGES))

lint:
	@$(MAKE) --no-print-directory -k lint-format lint-tidy

lint-format: lint-deps
	@out=$$(clang-format --dry-run -Werror $(FORMAT_FILES) 2>&1) && \
	  { echo "clang-format: $(words $(FORMAT_FILES)) files, all formatted"; exit 0; }; \
	bad=$$(printf '%s\n' "$$out" | sed -n 's/^\([^:]*\):[0-9]*:[0-9]*: error: code should be clang-formatted.*/\1/p' | uniq); \
	if [ -z "$$bad" ]; then printf '%s\n' "$$out"; exit 1; fi; \
	echo "Not formatted as .clang-format asks, $$(echo "$$bad" | wc -l) of $(words $(FORMAT_FILES))" \
	  "files (\`make format\` formats them):"; \
	printf '    %s\n' $$bad; exit 1

# compile_commands.json comes from the configure step; a file's output is shown only
# when clang-tidy fails on it.
lint-tidy: lint-deps configure
	@printf '%s\n' $(TIDY_FILES) | xargs -n 1 -P $(JOBS) sh -c \
	  'out=$$(clang-tidy -p $(BUILD) --quiet "$$1" 2>&1) || \
	   { printf "%s\n" "$$out" | grep -v "^[0-9]* warnings.* generated"; exit 1; }' clang-tidy \
	  || { echo "clang-tidy: findings above (the checks are in .clang-tidy)"; exit 1; }
	@echo "clang-tidy: $(words $(TIDY_FILES)) files of $(TIDY_LAYERS), no findings"

format: lint-deps
	clang-format -i $(FORMAT_FILES)

# libFuzzer targets of every reader, built with clang under ASan and UBSan.
# `make fuzz FUZZ_SECONDS=N FUZZ_SEEDS=DIR`: N seconds per target (default 60), DIR an
# extra folder of seed files given to every target. Fails on any finding.
.PHONY: fuzz fuzz-ci fuzz-deps
FUZZ_BUILD    ?= build-fuzz
FUZZ_SECONDS  ?= 60
FUZZ_SEEDS    ?=
FUZZ_PACKAGES := clang libclang-rt-14-dev

fuzz-deps: deps
	$(call install,$(FUZZ_PACKAGES))

fuzz: fuzz-deps
	cmake -S . -B $(FUZZ_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DMOLVERA_FUZZ=ON -DMOLVERA_GUI=OFF -DMOLVERA_BENCH=OFF -DBUILD_TESTING=OFF
	cmake --build $(FUZZ_BUILD) -j $(JOBS) --target fuzz_all
	./fuzz/run.sh $(FUZZ_BUILD) $(FUZZ_SECONDS) $(FUZZ_SEEDS)

# The short pass that CI runs: a few seconds per target.
fuzz-ci:
	$(MAKE) fuzz FUZZ_SECONDS=5
