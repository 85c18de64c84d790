-- What loaders that did not get to it have written into `history` alone.
INSERT INTO fact
SELECT host, pointer, place, since, value, there, void, version FROM history WHERE version >= {version}
