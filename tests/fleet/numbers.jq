# The same of the report that "vantor-inspect --fleet --json" gives.
def share: . * 1e7 | round;
(.groups | to_entries[] | .key as $kind | .value[] | "group \($kind) \(.name) \(.hosts) \(.pulses)"),
(.bits | to_entries[] | "bit \(.key | ascii_downcase) \(.value)"),
(.days[] | .day as $day | .bits | to_entries[] | "bit \($day) \(.key | ascii_downcase) \(.value)"),
(.versions[] | .content as $content |
    (.harms[] | "harm \($content) \(.name) \(.updates) \(.of) \(.rate | share) \(.low | share) \(.high | share) "
        + "\(.others_rate | share) \(.others_high | share) \(.stands_out)"),
    (.memory | to_entries[] | select(.value.updates > 0) | "memory \($content) \(.key) \(.value.updates) "
        + "\(.value.before_mib * 1000 | round) \(.value.after_mib * 1000 | round)"))
