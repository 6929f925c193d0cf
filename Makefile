# Quick start: `make run` builds the library and the kvcart program and converts a sample of real
# places; `make test` builds and runs the test suite.
BUILD      ?= build
SAN_BUILD  ?= build-sanitize
BENCH_BUILD ?= build-bench
FUZZ_BUILD ?= build-fuzz
TSAN_BUILD ?= build-tsan
FUZZ_SECONDS ?= 60
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE      ?= cmake

.PHONY: all deps configure build test run test-sanitize test-tsan bench fuzz clean

all: build

deps:
	@tools/install-deps.sh

$(BUILD)/CMakeCache.txt: | deps
	$(CMAKE) -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

configure: $(BUILD)/CMakeCache.txt

build: configure
	$(CMAKE) --build $(BUILD) -j $(JOBS)

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

run: build
	@sh examples/run_sample.sh $(BUILD)/kvcart examples/places.txt

test-sanitize: deps
	$(CMAKE) -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DKVCART_SANITIZE=ON
	$(CMAKE) --build $(SAN_BUILD) -j $(JOBS)
	cd $(SAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure -j $(JOBS)

# Several threads transforming at once, under ThreadSanitizer: any report fails.
test-tsan: deps
	$(CMAKE) -S . -B $(TSAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DKVCART_TSAN=ON -DKVCART_TESTS=OFF
	$(CMAKE) --build $(TSAN_BUILD) -j $(JOBS)
	mkdir -p $(TSAN_BUILD)/user
	TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 $(TSAN_BUILD)/thread_transforms data/ $(TSAN_BUILD)/user/ 8 3

# Three runs of each benchmark, reported by their mean, median and spread, then
# the ratios (from the medians) against PROJ, the per-point path and the
# vector-maths reference. BENCH_ARGS passes Google Benchmark options, such as
# BENCH_ARGS=--benchmark_filter=Interface. Then kvcart transform on a file of
# a million points beside cs2cs, cct and reading and writing the same text
# (bench/cli_bench.py; CLI_BENCH_ARGS passes its options, such as
# CLI_BENCH_ARGS=--points=100000). Then the Python package beside
# pyproj and the C batch function (python/bench.py; PY_BENCH_ARGS passes its
# options, such as PY_BENCH_ARGS=--no-dask). Last, the summary: one table of
# every engine (per point and batch, forward and inverse, beside PROJ) and the
# program (one thread beside cs2cs, cct and its identity run; the default
# threads as its batch), as the README keeps it.
bench: deps
	$(CMAKE) -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DKVCART_BENCH=ON -DKVCART_TESTS=OFF
	$(CMAKE) --build $(BENCH_BUILD) -j $(JOBS)
	$(BENCH_BUILD)/bench/kvcart_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true \
		--table_out=$(BENCH_BUILD)/engines-table.md $(BENCH_ARGS)
	/usr/bin/python3 bench/cli_bench.py --kvcart $(BENCH_BUILD)/kvcart --table-out $(BENCH_BUILD)/program-table.md \
		--summary-rows-out $(BENCH_BUILD)/program-rows.md $(CLI_BENCH_ARGS)
	@if [ -d $(BENCH_BUILD)/python/kvcart ]; then \
		PYTHONPATH=$(BENCH_BUILD)/python KVCART_USER_DIR=$(BENCH_BUILD)/python-user/ \
			$$(sed -n 's/^Python3_EXECUTABLE:FILEPATH=//p' $(BENCH_BUILD)/CMakeCache.txt) python/bench.py \
			--lib $(BENCH_BUILD)/libkvcart.so $(PY_BENCH_ARGS); \
	fi
	@echo; echo "Summary: every engine per point and batch beside PROJ's proj_trans, and the program beside cs2cs and cct"
	@cat $(BENCH_BUILD)/engines-table.md 2>/dev/null || echo "(no engine rows in this run)"
	@cat $(BENCH_BUILD)/program-rows.md

# libFuzzer under ASan and UBSan (clang): any crash, hang (10 s), leak or sanitizer
# report fails. New inputs go to a scratch corpus; the committed seeds stay as they are.
fuzz: deps
	$(CMAKE) -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DKVCART_FUZZ=ON -DKVCART_TESTS=OFF
	$(CMAKE) --build $(FUZZ_BUILD) -j $(JOBS)
	set -e; for target in catalogue wkt interface points; do \
		mkdir -p $(FUZZ_BUILD)/corpus-$$target; \
		UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 $(FUZZ_BUILD)/fuzz_$$target -max_total_time=$(FUZZ_SECONDS) \
			-timeout=10 -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/$$target- \
			$(FUZZ_BUILD)/corpus-$$target tests/fuzz/$${target}_seeds; \
	done

clean:
	rm -rf $(BUILD) $(SAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD) $(TSAN_BUILD)
