import os
import sys

import numpy as np
import pytest

import kvcart


@pytest.fixture(scope="session")
def rng():
    return np.random.default_rng(20240607)


def pytest_report_header(config):
    return "kvcart from %s, catalogue %s, python %s" % (
        os.path.dirname(kvcart.__file__), kvcart.catalogue_directory(), sys.executable)
