-- The documents of a host up to a moment whose facts were taken, the newest first.
SELECT moment, file, lower(hex(hash)), bytes
FROM (
  SELECT moment, file, hash, bytes
  FROM document
  WHERE host = {host} AND moment <= toInt64({until}) AND state = 'whole' AND problem = ''
  ORDER BY hash, written DESC
  LIMIT 1 BY hash
)
ORDER BY moment DESC, hash
