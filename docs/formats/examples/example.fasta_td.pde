first protein
_REV1
second  protein
_REV2

_REV3
