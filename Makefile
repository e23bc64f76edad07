# One thin front for building, testing and measuring. `make help` lists what there is.

PYTHON ?= /usr/bin/python3
PRESET ?= release
JOBS ?= 2
BUILD := build/$(PRESET)
STAGE := $(abspath $(BUILD))/stage
export PYTHONDONTWRITEBYTECODE := 1

.DEFAULT_GOAL := help
.PHONY: help setup build demo test test-native test-managed test-python test-all test-asan bench stress \
        lint format pythonpath wheel docs clean

help: ## list the targets
	@grep -hE '^[a-z-]+:.*## ' $(MAKEFILE_LIST) | sed -E 's/^([a-z-]+):.*## /\1\t/' | expand -t 14

setup: ## install or name what the build needs
	@tools/setup.sh

build: setup ## build both halves into build/<preset>/stage
	@test -f $(BUILD)/build.ninja || cmake --preset $(PRESET) -DVELBOR_PYTHON=$(PYTHON) --log-level=WARNING
	@echo "building both halves ($(PRESET))"
	@cmake --build --preset $(PRESET) -j $(JOBS) -- --quiet

pythonpath: ## print the PYTHONPATH with which the checkout's build imports
	@echo $(STAGE)

demo: build ## open a real OBJ, walk it, change it, save it in four formats
	@PYTHONPATH=$(STAGE) $(PYTHON) examples/demo.py

test: build test-native test-managed test-python ## everything that CI runs

test-native: build ## C++ unit tests
	@echo "C++ unit tests"
	@ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS) --timeout 300

test-managed: build ## the scene library's and the interop layer's own tests
	@tools/test_managed.sh $(BUILD)

test-python: build ## generator, contract and runtime tests
	@for suite in generator contract runtime; do \
	    test -d tests/$$suite || continue; \
	    echo "Python tests: $$suite"; \
	    PYTHONPATH=$(STAGE) $(PYTHON) -m pytest -q -p no:cacheprovider tests/$$suite || exit 1; \
	done

test-all: build ## contract tests and demo on every CPython from 3.9 to 3.13 that is here
	@tools/test_all.sh

test-asan: ## contract tests under AddressSanitizer and UndefinedBehaviorSanitizer
	@$(MAKE) --no-print-directory build PRESET=asan
	@tools/test_asan.sh build/asan

bench: build ## ratios to a hand-written floor, measured in the same run
	@PYTHONPATH=$(STAGE) $(PYTHON) bench/run.py
	@PYTHONPATH=$(STAGE) $(PYTHON) bench/bulk.py

stress: build ## each operation many times; VELBOR_STRESS=100000 for the full count
	@PYTHONPATH=$(STAGE) $(PYTHON) -m pytest -q -p no:cacheprovider tests/stress

lint: build ## formatting and static checks in all three languages
	@tools/lint.sh $(BUILD)

format: ## put the formatting right
	@tools/lint.sh --fix

wheel: build ## a wheel of the package in dist/
	@tools/wheel.sh $(BUILD)

docs: build ## the reference pages in build/<preset>/generated/docs
	@ls $(BUILD)/generated/docs >/dev/null && echo "reference pages: $(BUILD)/generated/docs"

clean: ## remove the build tree
	rm -rf build dist out
