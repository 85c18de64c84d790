-- Facts that hold now and have this text in them.
SELECT host, place, newest
FROM (
  -- The newest row of each host and place; only of those that showed such a value once.
  SELECT host, place, argMax(value, since) AS newest, argMax(there, since) AS holds
  FROM fact
  WHERE ({pointer} = '*' OR pointer = {pointer}) AND place LIKE {like}
    AND (place, host) IN (
      SELECT place, host FROM fact
      WHERE ({pointer} = '*' OR pointer = {pointer}) AND place LIKE {like} AND there = 1
        AND position(value, {value}) > 0
    )
  GROUP BY place, host
  UNION ALL
  SELECT host, place, argMax(value, since) AS newest, toUInt8(1) AS holds
  FROM latest
  WHERE ({pointer} = '*' OR pointer = {pointer}) AND place LIKE {like}
  GROUP BY place, host
)
WHERE holds = 1
  AND position(newest, {value}) > 0
ORDER BY host, place
