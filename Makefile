# The front door. `make demo` and `make test` are all that a newcomer needs.

.PHONY: help setup demo test stress sanitize lint tidy bench fuzz docs package format

help:
	@echo "make demo      install what is missing, build, and run the sample apps"
	@echo "make test      the same set-up, then every test suite"
	@echo "make lint      layers, formatting, clang's warnings"
	@echo "make tidy      clang-tidy over every source"
	@echo "make stress    the tests that take minutes"
	@echo "make sanitize  the tests under the address, undefined-behaviour and thread sanitizers"
	@echo "make bench     the figures beside their rivals, also in build/bench/bench.json"
	@echo "make fuzz      two minutes of fuzzing for each target"
	@echo "make docs      the public headers as HTML, in build/docs"
	@echo "make package   Debian packages, in build/package/packages"
	@echo "make format    lay out the sources as .clang-format says"

setup:
	@tools/setup

demo: setup
	@tools/build dev catalogue devserver download services shopwindow storefront
	@tools/demo_services
	@tools/demo_download
	@tools/demo
	@[ -z "$$DISPLAY$$WAYLAND_DISPLAY" ] || tools/demo_window

test: setup
	@tools/build dev
	@ctest --preset dev --parallel $$(nproc)

stress: setup
	@tools/build dev
	@ctest --preset dev -C stress -L stress

sanitize: setup
	@tools/build asan-ubsan
	@ctest --preset asan-ubsan --parallel $$(nproc)
	@tools/build tsan
	@ctest --preset tsan --parallel $$(nproc)

lint: setup
	@tools/lint

tidy: setup
	@tools/tidy

bench: setup
	@tools/build release
	@tools/bench

fuzz: setup
	@tools/build fuzz fuzzers
	@tools/fuzz

docs: setup
	@tools/docs

package: setup
	@tools/build package
	@cpack --config build/package/CPackConfig.cmake

format: setup
	@git ls-files --cached --others --exclude-standard '*.cpp' '*.h' | xargs clang-format -i
