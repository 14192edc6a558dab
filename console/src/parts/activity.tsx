// A background activity: a bar with words, how fast, and until when.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Progress } from "@patternfly/react-core/dist/esm/components/Progress/index.js";
import type { Activity } from "../model/health.ts";
import { bytes, duration, named, percent } from "../model/text.ts";
import { _, fill, language } from "../host/language.ts";
import { Bdi } from "./bdi.tsx";
import { ObjectLink } from "./links.tsx";
import { activityWord, standingWord } from "./state.tsx";
import { actNow } from "./notices.tsx";
import { useActing } from "./acting.tsx";

function timeLeft(seconds: number | null): string | null {
    if (seconds === null) return null;
    const until = new Intl.DateTimeFormat(language(), seconds > 20 * 3600
        ? { dateStyle: "short", timeStyle: "short" } : { timeStyle: "short" }).format(Date.now() + seconds * 1000);
    return fill(_("about $0 left, until $1"), duration(seconds, language()), until);
}

export function ActivityRow({ activity, onStop }: { activity: Activity; onStop?: () => void }) {
    const acting = useActing();
    const { address, name, progress, standing } = activity;
    const what = activityWord(activity.activity);
    const object = named(address, name);
    const words = [
        standing === "running" ? null : standingWord(standing),
        standing === "running" ? timeLeft(activity.seconds_left) : null,
        activity.rate === null ? null : fill(_("$0 per second"), bytes(activity.rate, language())),
    ].filter((word): word is string => word !== null);
    const paused = standing === "paused";
    return (
        <li className="vx-activity">
            <div className="vx-activity-head">
                <span><strong>{what}</strong> <ObjectLink address={address} name={name} /></span>
                <span className="vx-actions">
                    {standing === "running" || standing === "queued" ? (
                        <Button variant="secondary" size="sm" {...acting} aria-label={fill(_("Pause: $0"), object)}
                            onClick={() => void actNow(fill(_("$0 is paused"), object), ["task", "pause", address])}>
                            {_("Pause")}
                        </Button>
                    ) : null}
                    {paused ? (
                        <Button variant="secondary" size="sm" {...acting} aria-label={fill(_("Resume: $0"), object)}
                            onClick={() => void actNow(fill(_("$0 goes on"), object), ["task", "resume", address])}>
                            {_("Resume")}
                        </Button>
                    ) : null}
                    {onStop && standing !== "failed" ? (
                        <Button variant="link" size="sm" isDanger {...acting} aria-label={fill(_("Stop: $0"), object)} onClick={onStop}>
                            {_("Stop")}
                        </Button>
                    ) : null}
                </span>
            </div>
            {progress === null ? null : (
                <Progress value={Math.floor(progress * 100)} aria-label={fill(_("$0 of $1"), what, object)} size="sm"
                    label={percent(progress, language())} variant={paused ? "warning" : undefined} />
            )}
            <div className="vx-small">
                {words.join(" · ")}
                {activity.targets.length > 0
                    ? <> {_("onto")} {activity.targets.map(disk => <span key={disk}><ObjectLink address={disk} /> </span>)}</> : null}
                {activity.cause ? <div><bdi lang="en">{activity.cause}</bdi></div> : null}
                {activity.next_step ? <div><Bdi>{activity.next_step}</Bdi></div> : null}
            </div>
        </li>
    );
}

export function Activities({ activities, onStop }: { activities: Activity[]; onStop?: (activity: Activity) => void }) {
    return (
        <ul className="vx-list">
            {activities.map(activity => (
                <ActivityRow key={`${activity.address} ${activity.activity}`} activity={activity}
                    onStop={onStop && (() => onStop(activity))} />
            ))}
        </ul>
    );
}
